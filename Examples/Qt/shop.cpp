// A shop with Qt's event loop and no window: links an account, enquires it and unlinks it. Each
// line on standard input is a URL that the application is opened with.
//
//     shop SERVER COMMAND
//
// COMMAND is started with the address of each of the wallet's pages.

#include <QCoreApplication>
#include <QDebug>
#include <QSocketNotifier>
#include <QTextStream>

#include <unistd.h>

#include <ZolvaCheckoutKit/EventLoops/ZLVQtMainQueue.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVConsoleUserInterface.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxPlatform.h>
#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

namespace {

QTextStream out(stdout);

QString text(const ZLVValue& value) { return QString::fromStdString(value.description()); }

/// A completion that tells an error and quits, and goes on with a record.
auto orQuit(const char* call, auto next) {
  return [call, next](const auto& record, const auto& error) {
    if (record) return next(*record);
    out << call << " failed: " << error->localizedDescription().c_str() << Qt::endl;
    QCoreApplication::exit(1);
  };
}

void unlink(const std::string& id) {
  ZLVClient::disableAccountWithAccountID(id, orQuit("unlink", [](const auto& account) {
                                           out << "unlink: " << text(account.accountStatus())
                                               << Qt::endl;
                                           QCoreApplication::quit();
                                         }));
}

void enquire(const std::string& id) {
  ZLVClient::enquireAccountWithAccountID(id, orQuit("enquire", [id](const auto& account) {
                                           out << "enquire: " << text(account.accountStatus())
                                               << Qt::endl;
                                           unlink(id);
                                         }));
}

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  if (argc != 3) qFatal("usage: shop SERVER COMMAND");

  const auto queue = std::make_shared<ZLVQtMainQueue>([](std::exception_ptr fault) {
    try {
      std::rethrow_exception(fault);
    } catch (const std::exception& exception) {
      qCritical() << exception.what();
    }
  });
  auto platform = ZLVLinuxPlatform::platformWithOptions(
      {.applicationName = "Corner Coffee",
       .applicationVersion = "2.1",
       .analyticsRootURL = std::string(argv[1]) + '/'});  // the sandbox takes the usage events, too
  platform.mainQueue = queue;
  platform.userInterface = std::make_shared<ZLVConsoleUserInterface>(queue, argv[2]);
  const auto window = platform.userInterface->keyWindowRootViewController();
  ZLVPlatform::install(std::move(platform));
  ZLVClient::initWithMerchantServerURL(argv[1], "M-1001", "shop://done", false);

  QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
  QObject::connect(&input, &QSocketNotifier::activated, [&input] {
    char line[1024];
    const auto size = read(STDIN_FILENO, line, sizeof line);
    if (size <= 0) return input.setEnabled(false);
    const auto url = QString::fromUtf8(line, static_cast<int>(size)).trimmed();
    out << "opened with: " << url << Qt::endl;
    const auto opened = ZLVURL::URLWithString(url.toStdString());
    if (opened) ZLVClient::handleCallbackUrl(*opened);
  });

  const auto user = ZLVPartnerDetails::initWithPhoneNumber("7700900123", "44");
  ZLVClient::linkAccountWithPaymentType(
      "zolva", user, window, orQuit("link", [](const auto& link) {
        enquire(link.accountID().description());  // what the user did on the page, the server knows
      }));
  const int status = QCoreApplication::exec();
  // The last usage events are still on the way.
  return queue->runUntilIdle(std::chrono::seconds(2)) ? status : 1;
}
