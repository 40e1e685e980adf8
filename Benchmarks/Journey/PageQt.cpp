// page-qt CONTENDER MERCHANT COLLECTOR: the same application as page's, with Qt and its web engine.

#include <QApplication>
#include <QMainWindow>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPushButton>
#include <QSocketNotifier>
#include <QTimer>
#include <QWebEngineView>
#include <memory>
#include <string>

#include <unistd.h>

#include "Benchmarks/Journey/Charge.h"

namespace {

class Shop {
 public:
  explicit Shop(std::string merchant) : merchant_(std::move(merchant)) {
    window_.resize(360, 640);
    closePage();
    window_.show();
    QObject::connect(manager_.get(request(accountPath)), &QNetworkReply::finished, [this] {
      tellTime();
      QObject::connect(&lines_, &QSocketNotifier::activated, [this] { takeLine(); });
    });
  }

 private:
  [[nodiscard]] QNetworkRequest request(const char* path) const {
    QNetworkRequest request(QUrl(QString::fromStdString(merchant_ + path)));
    for (const auto& [name, value] : requestHeaders) request.setRawHeader(name, value);
    return request;
  }

  void takeLine() {
    constexpr int pause = 500;
    char byte = 0;
    if (read(STDIN_FILENO, &byte, 1) != 1) _exit(0);
    if (byte != '\n') return;
    if (charges_ > 0) closePage();
    QTimer::singleShot(pause, [this] { charge(); });
  }

  void charge() {
    tellTime();
    auto message = request(chargePath);
    message.setHeader(QNetworkRequest::ContentTypeHeader, "application/json");
    auto* reply = manager_.post(message, QByteArray::fromStdString(chargeBody(++charges_)));
    QObject::connect(reply, &QNetworkReply::finished, [this, reply] {
      auto* view = std::make_unique<QWebEngineView>().release();
      window_.setCentralWidget(view);  // and owns it
      view->load(QUrl(QString::fromStdString(pageOf(reply->readAll().toStdString()))));
      reply->deleteLater();
    });
  }

  void closePage() { window_.setCentralWidget(std::make_unique<QPushButton>("Pay").release()); }

  const std::string merchant_;
  QMainWindow window_;
  QNetworkAccessManager manager_;
  QSocketNotifier lines_{STDIN_FILENO, QSocketNotifier::Read};
  int charges_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  // Chromium refuses to run its sandbox as root, which this is in a container.
  if (geteuid() == 0) qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
  QApplication application(argc, argv);
  const Shop shop(argv[2]);
  return QApplication::exec();
}
