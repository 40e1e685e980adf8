import Foundation
import SafariServices
import Testing
import UIKit

@testable import ZolvaCheckoutKit

@Suite(.serialized) @MainActor struct UIKitTests {
  @Test func closedByTheUser() async throws {
    let phone = Phone()
    let call = try await phone.link(over: phone.shop)
    #expect(phone.page?.url == URL(string: "https://wallet.example/1"))
    #expect(phone.page?.modalPresentationStyle == .fullScreen)
    #expect(phone.page?.dismissButtonStyle == .close)
    phone.page?.tapDismissButton()
    #expect(phone.page?.isBeingDismissed == true)
    #expect(call.answers.isEmpty)
    try await call.end()
  }

  @Test func closedByTheCallback() async throws {
    let phone = Phone()
    let call = try await phone.link(over: phone.shop)
    ZLVClient.handleCallbackUrl(URL(string: "SHOP://DONE")!)
    #expect(phone.page?.isBeingDismissed == false)
    phone.comeBack()
    phone.comeBack()
    #expect(phone.page?.isBeingDismissed == true)
    #expect(call.answers.isEmpty)
    try await call.end()
  }

  /// A wallet may lead back before its page has come up all the way.
  @Test func closedWhilePresenting() async throws {
    let phone = Phone()
    let call = Call(over: phone.shop)
    try await until { phone.page != nil }
    phone.comeBack()
    try await call.end()
  }

  /// A link of the page opens another application, in which the payment goes on.
  @Test func anotherApplication() async throws {
    let phone = Phone()
    let call = try await phone.link(over: phone.shop)
    #expect(phone.page?.delegate == nil)
    phone.page?.openOtherApplication()
    try await turnAround()
    #expect(call.answers.isEmpty)
    phone.comeBack()
    try await call.end()
  }

  @Test func somethingAboveThePage() async throws {
    let phone = Phone()
    let call = try await phone.link(over: phone.shop)
    phone.page?.present(UIViewController(), animated: true)
    try await turnAround()
    phone.comeBack()
    try await turnAround()
    #expect(call.answers.isEmpty)
    phone.page?.dismiss(animated: true)
    try await turnAround()
    phone.comeBack()
    try await call.end()
  }

  /// In a navigation controller the walk goes to the top of the stack; in a subclass of it, which
  /// is none to the walk, to what that presents.
  @Test(arguments: [true, false]) func inNavigation(isExactly: Bool) async throws {
    final class Stack: UINavigationController {}
    let phone = Phone { shop in
      let stack = isExactly ? UINavigationController() : Stack()
      stack.pushViewController(UIViewController(), animated: false)
      stack.pushViewController(shop, animated: false)
      return stack
    }
    let call = try await phone.link(over: phone.shop)
    phone.comeBack()
    #expect(phone.page?.isBeingDismissed == isExactly)
    if !isExactly { phone.page?.tapDismissButton() }
    try await call.end()
  }

  /// Each scene has a key window. The page is in the one, the other comes first.
  @Test func twoScenes() async throws {
    let phone = Phone()
    let other = UIViewController()
    Phone.window(other, .foregroundInactive)
    let call = try await phone.link(over: other)
    phone.comeBack()
    try await call.end()
    #expect(phone.page == nil)
  }

  /// Over a controller that is in no window nothing is shown, nor over none, nor over one that
  /// presents something already.
  @Test func nowhereToShow() async throws {
    let phone = Phone()
    let gone = UIViewController()
    phone.shop.present(UIViewController(), animated: false)
    try await turnAround()
    for controller in [gone, nil, phone.shop] {
      let call = Call(over: controller)
      try await until { !call.answers.isEmpty }
      #expect(try call.answers.first?.get().accountID == "a")
    }
  }

  /// What the page is over goes, and takes the page along.
  @Test func goesWithItsPresenter() async throws {
    let phone = Phone()
    let call: Call
    do {
      let sheet = UIViewController()
      phone.shop.present(sheet, animated: false)
      try await turnAround()
      call = try await phone.link(over: sheet)
    }
    phone.shop.dismiss(animated: true)
    try await until { !call.answers.isEmpty }
    try await turnAround()
    #expect(call.answers.count == 1)
  }

  @Test func deviceFacts() async throws {
    _ = Phone()
    let device = standardDevice
    #expect(device.fact(.mainScreenSize)?["height"]?.double == 844)
    #expect(device.fact(.identifierForVendor)?.text?.count == 36)
    #expect(device.fact(.machine) == .text("iPhone14,5"))
    let threads = #"[{"cpu_usage":250,"is_idle":false},{"cpu_usage":0,"is_idle":true},null]"#
    #expect(device.fact(.threads)?.jsonText == threads)
    #expect(threadsLent == 0)
    UIDevice.current.name = "Grace's phone"
    #expect(device.fact(.name) == .text("Grace's phone"))
    let elsewhere = await Task.detached { device.fact(.name) }.value
    #expect(elsewhere == .text("Grace's phone"))

    ZLVClient.initWithMerchantServerURL(
      "https://shop.example", merchantId: "M-1001", callbackUrl: "shop://done")
    try await until { !Server.shared.uploads.value.isEmpty }
    let upload = try #require(Server.shared.uploads.value.last)
    for fact in ["Grace's phone", "15.8", "2.1", "M-1001"] { #expect(upload.contains(fact)) }
  }
}
