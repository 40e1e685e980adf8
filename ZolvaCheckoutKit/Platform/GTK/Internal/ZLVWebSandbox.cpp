#include <array>
#include <filesystem>
#include <string>
#include <system_error>

#include <glib.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVWebSandbox.h>

namespace {

constexpr const char* sandboxSwitch = "WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS";
/// Says that this is a Flatpak, which has a sandbox of its own.
constexpr const char* flatpakMark = "/.flatpak-info";

/// What WebKit asks of bubblewrap, in short.
constexpr std::array attempt{"bwrap",
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
                             "true"};

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

  std::array<char*, attempt.size() + 1> arguments{};
  // GLib takes the arguments as not const for C's sake and does not change them.
  for (std::size_t i = 0; i < attempt.size(); ++i) arguments[i] = const_cast<char*>(attempt[i]);

  char* output = nullptr;
  GError* error = nullptr;
  int status = 0;
  const bool hasRun =
      g_spawn_sync(nullptr, arguments.data(), nullptr,
                   static_cast<GSpawnFlags>(G_SPAWN_SEARCH_PATH | G_SPAWN_STDOUT_TO_DEV_NULL),
                   nullptr, nullptr, nullptr, &output, &status, &error) != FALSE;
  const ZLVGText text(output);
  if (hasRun && g_spawn_check_wait_status(status, &error) != FALSE) return {};
  const ZLVGError reason(error);
  return text && *g_strstrip(text.get()) != '\0' ? text.get() : reason->message;
}

}  // namespace

void ZLVWebSandbox::prepare(ZLVSystemLog& log) {
  if (g_getenv(sandboxSwitch) != nullptr || isFlatpak()) return;
  auto reason = problem();
  if (reason.empty()) return;
  for (char& c : reason) {
    if (c == '\n') c = ' ';
  }
  log.log("Web pages run without a sandbox, which does not work here: " + reason);
  g_setenv(sandboxSwitch, "1", FALSE);
}
