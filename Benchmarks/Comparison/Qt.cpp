#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <stdexcept>

#include "Benchmarks/Comparison/Contender.h"

namespace {

class QtNetwork final : public Contender {
 public:
  void start(const std::string& server) override {
    QNetworkRequest request(QUrl(QString::fromStdString(server + accountPath)));
    for (const auto& [name, value] : requestHeaders) request.setRawHeader(name, value);
    QNetworkReply* reply = manager_.get(request);
    QObject::connect(reply, &QNetworkReply::finished, [this, reply] {
      if (reply->error() != QNetworkReply::NoError) throw std::runtime_error("Qt: the call failed");
      const QByteArray body = reply->readAll();
      reply->deleteLater();
      done(recordOf({body.constData(), static_cast<std::size_t>(body.size())}));
    });
  }
  void run() override { QCoreApplication::exec(); }
  void stop() override { QCoreApplication::quit(); }

 private:
  int argumentCount_ = 0;
  QCoreApplication application_{argumentCount_, nullptr};
  QNetworkAccessManager manager_;
};

}  // namespace

std::unique_ptr<Contender> makeQt() { return std::make_unique<QtNetwork>(); }
