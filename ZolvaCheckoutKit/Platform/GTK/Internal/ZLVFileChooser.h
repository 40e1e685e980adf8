#pragma once

#include <webkit/webkit.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVSignals.h>

/// The toolkit's dialog for the files that a page asks for, such as a photo of the user's passport.
/// It goes with this object and with the page that asked.
class ZLVFileChooser {
 public:
  explicit ZLVFileChooser(WebKitWebView* view);
  ZLVFileChooser(const ZLVFileChooser&) = delete;
  ZLVFileChooser& operator=(const ZLVFileChooser&) = delete;
  ~ZLVFileChooser();

 private:
  struct Opened;

  void open(WebKitWebView* view, WebKitFileChooserRequest* request);

  /// One at a time, as the engine keeps only the last request.
  std::unique_ptr<Opened> opened_;
  ZLVSignals signals_;
};
