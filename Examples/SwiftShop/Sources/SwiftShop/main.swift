// The shop for a terminal: SwiftShop SERVER COMMAND. The command is the wallet's user: it finds the
// page's URL in $PAGE, and prints where the wallet leads, or nothing to close the page.

import Checkout
import Foundation
import ZolvaCheckoutKit

@MainActor final class Terminal: ZLVUserInterface {
  private let command: String
  private var shown: ZLVPage?

  init(command: String) { self.command = command }

  func show(_ page: ZLVPage, over _: ZLVViewController) {
    shown = page
    let user = Process()
    let output = Pipe()
    user.executableURL = URL(fileURLWithPath: "/bin/sh")
    user.arguments = ["-c", command]
    user.environment = ["PATH": "/usr/bin:/bin", "PAGE": page.url.absoluteString]
    user.standardOutput = output
    user.terminationHandler = { _ in
      let text = String(decoding: output.fileHandleForReading.availableData, as: UTF8.self)
      let url = URL(string: text.trimmingCharacters(in: .whitespacesAndNewlines))
      Task { @MainActor in
        if let url { checkout.open(url) } else { self.shown = nil }
      }
    }
    do { try user.run() } catch { shown = nil }
  }

  func hide(_: ZLVPage, animated _: Bool) { shown = nil }
}

guard CommandLine.arguments.count == 3 else { fatalError("SwiftShop SERVER COMMAND") }
let server = CommandLine.arguments[1]
var platform = ZLVPlatform()
platform.applicationName = "Corner Coffee"
platform.applicationVersion = "2.1"
platform.analyticsRootURL = URL(string: server + "/")
platform.userInterface = Terminal(command: CommandLine.arguments[2])
ZLVPlatform.install(platform)

let checkout = Checkout(server: server)
let window = ZLVViewController()
print(await checkout.link(phoneNumber: "7700900123", countryCode: "44", over: window))
print(await checkout.pay(order: "o-1", amount: 2.5, over: window))
print(await checkout.pay(order: "o-2", amount: 250, over: window))
print(await checkout.unlink())
exit(await ZLVPlatform.untilIdle(limit: 30) ? 0 : 1)
