#include <string>
#include <vector>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVFileChooser.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVLocalizedText.h>

namespace {

std::vector<std::string> pathsOf(GtkFileChooser* chooser) {
  const auto files = ZLVGObject<GListModel>::take(gtk_file_chooser_get_files(chooser));
  std::vector<std::string> paths;
  for (guint i = 0; i < g_list_model_get_n_items(files.get()); ++i) {
    const auto file =
        ZLVGObject<GFile>::take(static_cast<GFile*>(g_list_model_get_item(files.get(), i)));
    if (const ZLVGText path(g_file_get_path(file.get())); path) paths.emplace_back(path.get());
  }
  return paths;
}

}  // namespace

/// A request until it is answered. Not answered by the user, it is when this ends.
struct ZLVFileChooser::Opened {
  Opened(GtkWindow* window, WebKitFileChooserRequest* asked)
      : request(ZLVGObject<WebKitFileChooserRequest>::retain(asked)),
        dialog(ZLVGObject<GtkFileChooserNative>::take(
            gtk_file_chooser_native_new(ZLVLocalized("Choose a File"), window,
                                        GTK_FILE_CHOOSER_ACTION_OPEN, nullptr, nullptr))) {
    auto* const chooser = GTK_FILE_CHOOSER(dialog.get());
    gtk_file_chooser_set_select_multiple(chooser,
                                         webkit_file_chooser_request_get_select_multiple(asked));
    if (auto* const filter = webkit_file_chooser_request_get_mime_types_filter(asked)) {
      gtk_file_chooser_add_filter(chooser, filter);
    }
    gtk_native_dialog_set_modal(GTK_NATIVE_DIALOG(dialog.get()), TRUE);
  }
  Opened(const Opened&) = delete;
  Opened& operator=(const Opened&) = delete;
  ~Opened() {
    signals.disconnect();
    gtk_native_dialog_destroy(GTK_NATIVE_DIALOG(dialog.get()));
    if (!isAnswered) webkit_file_chooser_request_cancel(request.get());
  }

  void select(const std::vector<std::string>& paths) {
    std::vector<const char*> files;
    files.reserve(paths.size() + 1);
    for (const auto& path : paths) files.push_back(path.c_str());
    if (files.empty()) return;
    files.push_back(nullptr);
    webkit_file_chooser_request_select_files(request.get(), files.data());
    isAnswered = true;
  }

  ZLVGObject<WebKitFileChooserRequest> request;
  ZLVGObject<GtkFileChooserNative> dialog;
  bool isAnswered = false;
  ZLVSignals signals;
};

ZLVFileChooser::ZLVFileChooser(WebKitWebView* view) {
  signals_.connect(view, "run-file-chooser",
                   [this](WebKitWebView* sender, WebKitFileChooserRequest* request) -> gboolean {
                     open(sender, request);
                     return TRUE;
                   });
  signals_.connect(view, "load-changed", [this](WebKitWebView*, WebKitLoadEvent event) {
    if (event == WEBKIT_LOAD_COMMITTED) opened_.reset();
  });
  signals_.connect(view, "web-process-terminated",
                   [this](WebKitWebView*, WebKitWebProcessTerminationReason) { opened_.reset(); });
}

ZLVFileChooser::~ZLVFileChooser() = default;

void ZLVFileChooser::open(WebKitWebView* view, WebKitFileChooserRequest* request) {
  opened_ = std::make_unique<Opened>(GTK_WINDOW(gtk_widget_get_root(GTK_WIDGET(view))), request);
  auto* const dialog = opened_->dialog.get();
  opened_->signals.connect(dialog, "response", [this](GtkNativeDialog* sender, int response) {
    if (response == GTK_RESPONSE_ACCEPT) opened_->select(pathsOf(GTK_FILE_CHOOSER(sender)));
    opened_.reset();
  });
  gtk_native_dialog_show(GTK_NATIVE_DIALOG(dialog));
}
