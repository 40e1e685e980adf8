#include <filesystem>
#include <string>
#include <system_error>

#include <gio/gio.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVWebSandbox.h>

namespace {

constexpr const char* sandboxSwitch = "WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS";
/// Says that this is a Flatpak, which has a sandbox of its own.
constexpr const char* flatpakMark = "/.flatpak-info";

/// What WebKit asks of bubblewrap, in short; the null ends it.
constexpr const char* attempt[] = {"bwrap",
                                   "--die-with-parent",
                                   "--ro-bind",
                                   "/",
                                   "/",
                                   "--dev",
                                   "/dev",
                                   "--proc",
                                   "/proc",
                                   "--unshare-pid",
                                   "--unshare-uts",
                                   "--unshare-ipc",
                                   "--unshare-net",
                                   "true",
                                   nullptr};

/// Whether this is a Flatpak.
///
/// WebKit leaves an empty mark in the real root directory when it runs as root, and from then on
/// takes every process for a Flatpak and gives its pages no sandbox at all. So that goes.
bool isFlatpak() {
  std::error_code error;
  const auto size = std::filesystem::file_size(flatpakMark, error);
  if (error) return false;
  if (size == 0) std::filesystem::remove(flatpakMark, error);
  return size != 0;
}

/// Why the sandbox does not work; empty when it does.
std::string problem() {
  std::error_code ignored;
  if (std::filesystem::exists(flatpakMark, ignored)) return std::string("remove ") + flatpakMark;

  GError* error = nullptr;
  char* output = nullptr;
  const auto process = ZLVGObject<GSubprocess>::take(
      g_subprocess_newv(attempt,
                        static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDOUT_SILENCE |
                                                      G_SUBPROCESS_FLAGS_STDERR_PIPE),
                        &error));
  const bool hasRun = process && g_subprocess_communicate_utf8(process.get(), nullptr, nullptr,
                                                               nullptr, &output, &error) != FALSE;
  const ZLVGError failure(error);
  const ZLVGText complaint(output);
  if (!hasRun) return failure->message;
  if (g_subprocess_get_successful(process.get()) != FALSE) return {};
  return complaint && *complaint != '\0' ? g_strstrip(complaint.get()) : "bwrap has failed";
}

}  // namespace

void ZLVWebSandbox::prepare() {
  if (g_getenv(sandboxSwitch) != nullptr || isFlatpak()) return;
  auto reason = problem();
  if (reason.empty()) return;
  for (char& c : reason) {
    if (c == '\n') c = ' ';
  }
  g_log("ZolvaCheckoutKit", G_LOG_LEVEL_WARNING,
        "Web pages run without a sandbox, which does not work here: %s", reason.c_str());
  g_setenv(sandboxSwitch, "1", FALSE);
}
