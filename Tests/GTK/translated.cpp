// translated [LIBRARY]: prints a text of the browser in the user's language. The backend stands in
// the program itself, or in LIBRARY, which is made of this file too.
#include <bit>
#include <clocale>
#include <cstdio>

#include <dlfcn.h>
#include <gtk/gtk.h>
#include <libintl.h>

#include <ZolvaCheckoutKit/Platform/GTK/ZLVGTKPlatform.h>

extern "C" ZLV_EXPORT void printText() {
  auto* const application = gtk_application_new(nullptr, G_APPLICATION_DEFAULT_FLAGS);
  const auto platform =
      ZLVGTKPlatform::platformWithApplication(application, {.applicationVersion = "1"});
  std::puts(dgettext("ZolvaCheckoutKit", "Close"));
  g_object_unref(application);
}

int main(int argc, char** argv) {
  std::setlocale(LC_ALL, "");
  void* library = argc > 1 ? dlopen(argv[1], RTLD_NOW) : nullptr;
  auto* const print = std::bit_cast<void (*)()>(library ? dlsym(library, "printText") : nullptr);
  if (argc > 1 && print == nullptr) {
    std::puts(dlerror());
    return 1;
  }
  (print ? print : printText)();
}
