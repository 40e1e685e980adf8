private import CZolvaCheckoutKit
import Foundation

#if canImport(FoundationNetworking)
import FoundationNetworking
#endif
#if canImport(UIKit)
@preconcurrency import UIKit
#endif

/// The C library. Pointers live in this file only, and its types are private to it.
enum Core {
  typealias Answer = @MainActor @Sendable (Result<ZLVJSON, ZLVError>) -> Void

  /// A page's handle: a number, though C has it as a pointer.
  typealias Handle = UInt

  @MainActor static func configure(
    merchantServerURL: String, merchantId: String, callbackUrl: String, isLoggingEnabled: Bool
  ) {
    checkForC(merchantServerURL + merchantId + callbackUrl)
    check(zlv_configure(merchantServerURL, merchantId, callbackUrl, isLoggingEnabled ? 1 : 0))
  }

  @MainActor static func link(
    paymentType: String, partnerDetails: ZLVJSON?, presenter: Presenter?, answer: @escaping Answer
  ) {
    checkForC(paymentType)
    withView(of: presenter) { view in
      begin(Presenter.hold(answer, presenter)) {
        zlv_link(paymentType, partnerDetails?.jsonText, view, completion, $0)
      }
    }
  }

  static func enquire(accountID: String, answer: @escaping Answer) {
    checkForC(accountID)
    begin(answer) { zlv_enquire(accountID, completion, $0) }
  }

  static func disable(accountID: String, answer: @escaping Answer) {
    checkForC(accountID)
    begin(answer) { zlv_disable(accountID, completion, $0) }
  }

  @MainActor static func charge(
    details: ZLVJSON, presenter: Presenter?, answer: @escaping Answer
  ) {
    withView(of: presenter) { view in
      begin(Presenter.hold(answer, presenter)) {
        zlv_charge(details.jsonText, view, completion, $0)
      }
    }
  }

  @MainActor static func handleCallbackUrl(_ url: String) {
    checkForC(url)
    check(zlv_handle_callback_url(url))
  }

  @MainActor static func isIdle() -> Bool {
    zlv_run_until_idle(0, { _, _ in }, nil) == ZLV_OK
  }

  /// Tells that a page is gone. Any thread; of no effect where the library has hidden it.
  static func pageClosed(_ page: Handle) { zlv_page_closed(OpaquePointer(bitPattern: page)) }

  private final class Waiting: Sendable {
    let answer: Answer
    init(_ answer: @escaping Answer) { self.answer = answer }
  }

  private static let completion: zlv_completion = { context, record, error in
    let waiting = Unmanaged<Waiting>.fromOpaque(context!).takeRetainedValue()
    let result = ZLVError.result(
      record: record.map { String(cString: $0) }, error: error.map { String(cString: $0) })
    onMain { waiting.answer(result) }
  }

  /// Starts an operation. A mistake in the program ends it; any other failure is its answer.
  private static func begin(
    _ answer: @escaping Answer, _ operation: (UnsafeMutableRawPointer) -> zlv_result
  ) {
    let waiting = Unmanaged.passRetained(Waiting(answer))
    let result = operation(waiting.toOpaque())
    guard result != ZLV_OK else { return }
    waiting.release()
    if result != ZLV_NO_RESOURCES { fatalError(lastFault) }
    let error = ZLVError(domain: NSPOSIXErrorDomain, code: Int(ENOMEM), description: lastFault)
    DispatchQueue.main.async { answer(.failure(error)) }
  }

  /// A handle for a view for as long as `body` takes; the call keeps what it needs.
  @MainActor private static func withView(
    of presenter: Presenter?, _ body: (OpaquePointer?) -> Void
  ) {
    guard let presenter else { return body(nil) }
    let kept = Unmanaged.passRetained(presenter).toOpaque()
    let view = zlv_view_create(kept) { pointer in
      let address = UInt(bitPattern: pointer)
      onMain {  // a view controller ends on the main thread
        Unmanaged<Presenter>.fromOpaque(UnsafeRawPointer(bitPattern: address)!).release()
      }
    }
    if view == nil { fatalError(lastFault) }
    body(view)
    zlv_view_release(view)
  }

  private static var lastFault: String { String(cString: zlv_last_fault()) }

  private static func check(_ result: zlv_result) {
    if result != ZLV_OK { fatalError(lastFault) }
  }

  /// C would cut a text short where it has a NUL.
  private static func checkForC(_ text: String) {
    precondition(!text.utf8.contains(0), "a text with a NUL")
  }

  // ---- What the library asks of its host

  @MainActor static func install(_ host: Host) {
    var platform = zlv_platform()
    platform.size = MemoryLayout<zlv_platform>.size
    platform.context = Unmanaged.passRetained(host).toOpaque()
    platform.dispatch = { _, block in
      let handle = UInt(bitPattern: block)
      DispatchQueue.main.async { zlv_block_run(OpaquePointer(bitPattern: handle)) }
    }
    if host.platform.urlSession != nil {
      platform.send = { Core.send($0, $1, $2!.pointee) }
    }
    platform.log = { Core.host($0).platform.log(String(cString: $1!)) }
    platform.device_fact = { context, fact, text in
      guard let value = Fact(rawValue: fact).flatMap(Core.host(context).fact) else { return }
      zlv_text_set(text, value.description)
    }
    platform.show_page = { Core.showPage($0, $1!.pointee) }
    platform.hide_page = { context, page, animated in
      let (host, handle) = (Core.host(context), UInt(bitPattern: page))
      MainActor.assumeIsolated { host.hide(handle, animated: animated != 0) }
    }
    if host.platform.userInterface is any ViewTree {
      platform.key_window_root = { context in
        Core.view(context) { $0.keyWindowRootViewController() }
      }
      platform.presented_view = { context, view in
        let view = Core.viewController(view)
        return Core.view(context) { $0.presented(by: view) }
      }
      platform.last_child_view = { context, view in
        let view = Core.viewController(view)
        return Core.view(context) { $0.lastChild(of: view) }
      }
      platform.view_kind = { Core.viewKind($0, Core.viewController($1), $2!) }
    }
    platform.fault = { context, text in
      let (host, text) = (Core.host(context), String(cString: text!))
      onMain { host.platform.fault(text) }
    }
    let root = host.platform.analyticsRootURL.flatMap { strdup($0.absoluteString) }
    defer { free(root) }
    platform.analytics_root_url = UnsafePointer(root)
    check(zlv_install(&platform))
  }

  private static func host(_ context: UnsafeMutableRawPointer?) -> Host {
    Unmanaged.fromOpaque(context!).takeUnretainedValue()
  }

  private static func send(
    _ context: UnsafeMutableRawPointer?, _ task: OpaquePointer?, _ request: zlv_request
  ) {
    let pending = Pending(task!)
    guard let url = URL(string: String(cString: request.url)) else {
      return pending.answer(.failure(URLError(.badURL)))
    }
    var made = URLRequest(url: url, timeoutInterval: request.timeout)
    made.httpMethod = String(cString: request.method)
    for index in 0..<request.header_count {
      made.addValue(
        String(cString: request.header_values[index]!),
        forHTTPHeaderField: String(cString: request.header_names[index]!))
    }
    if let body = request.body { made.httpBody = Data(bytes: body, count: request.body_length) }
    host(context).platform.urlSession!.dataTask(with: made) { pending.answer($0) }
  }

  /// A request that waits for its answer. Let go without one, it is released.
  private final class Pending: Sendable {
    let handle: UInt

    init(_ task: OpaquePointer) { handle = UInt(bitPattern: task) }
    deinit { zlv_task_release(OpaquePointer(bitPattern: handle)) }

    func answer(_ result: Result<(body: Data, statusCode: Int), any Error>) {
      var answer = zlv_answer()
      answer.size = MemoryLayout<zlv_answer>.size
      switch result {
      case .success(let (body, statusCode)) where 100...999 ~= statusCode:
        answer.status_code = Int64(statusCode)
        body.withUnsafeBytes { bytes in
          answer.body = bytes.baseAddress
          answer.body_length = bytes.count
          _ = zlv_task_answer(OpaquePointer(bitPattern: handle), &answer)
        }
      case .success:
        self.answer(.failure(URLError(.badServerResponse)))
      case .failure(let error):
        let error = error as NSError
        answer.error_code = Int64(error.code)
        error.domain.withCString { domain in
          answer.error_domain = domain
          error.jsonUserInfo.jsonText.withCString { userInfo in
            answer.error_user_info = userInfo
            _ = zlv_task_answer(OpaquePointer(bitPattern: handle), &answer)
          }
        }
      }
    }
  }

  private static func showPage(
    _ context: UnsafeMutableRawPointer?, _ request: zlv_page_request
  ) -> Int32 {
    guard let url = URL(string: String(cString: request.url)) else { return 0 }
    let page = ZLVPage(
      handle: UInt(bitPattern: request.page), url: url, isAnimated: request.animated != 0,
      dismissButtonStyle: Int(request.dismiss_button_style))
    let host = host(context)
    let presenter = Unmanaged<Presenter>.fromOpaque(request.host_view).takeUnretainedValue()
    MainActor.assumeIsolated { host.show(page, over: presenter) }
    return 1
  }

  private static func viewController(_ view: UnsafeMutableRawPointer?) -> ZLVViewController {
    Unmanaged.fromOpaque(view!).takeUnretainedValue()
  }

  /// A view lent to the walk, which its window keeps.
  private static func view(
    _ context: UnsafeMutableRawPointer?,
    _ look: @MainActor (any ViewTree) -> ZLVViewController?
  ) -> UnsafeMutableRawPointer? {
    let host = host(context)
    let address = MainActor.assumeIsolated {
      look(host.platform.userInterface as! any ViewTree).map {
        UInt(bitPattern: Unmanaged.passUnretained($0).toOpaque())
      }
    }
    return address.flatMap { UnsafeMutableRawPointer(bitPattern: $0) }
  }

  private static func viewKind(
    _ context: UnsafeMutableRawPointer?, _ viewController: ZLVViewController,
    _ page: UnsafeMutablePointer<OpaquePointer?>
  ) -> Int32 {
    let host = host(context)
    let kind = MainActor.assumeIsolated {
      (host.platform.userInterface as! any ViewTree).kind(of: viewController)
    }
    switch kind {
    case .other: return Int32(ZLV_VIEW_OTHER)
    case .navigationController: return Int32(ZLV_VIEW_NAVIGATION_CONTROLLER)
    case .page(let shown):
      page.pointee = OpaquePointer(bitPattern: shown.handle)
      return Int32(ZLV_VIEW_PAGE)
    }
  }
}

#if canImport(UIKit)

extension Core {
  /// What each thread of this process uses of the processor; null for one that cannot be read.
  static func threads() -> [ZLVJSON]? {
    var list: thread_act_array_t?
    var count: mach_msg_type_number_t = 0
    guard task_threads(mach_task_self_, &list, &count) == KERN_SUCCESS, let list else { return nil }
    defer {
      let size = vm_size_t(count) * vm_size_t(MemoryLayout<thread_act_t>.size)
      let result = vm_deallocate(mach_task_self_, vm_address_t(UInt(bitPattern: list)), size)
      precondition(result == KERN_SUCCESS, "kr == KERN_SUCCESS")
    }
    return (0..<Int(count)).map { index in
      // thread_basic_info as numbers: the fifth is cpu_usage, the eighth are the flags.
      var info = [integer_t](repeating: 0, count: Int(THREAD_INFO_MAX))
      var size = mach_msg_type_number_t(THREAD_INFO_MAX)
      let flavor = thread_flavor_t(THREAD_BASIC_INFO)
      guard thread_info(list[index], flavor, &info, &size) == KERN_SUCCESS else { return .null }
      return .object([
        "cpu_usage": ZLVJSON(info[4]), "is_idle": .bool(info[7] & integer_t(TH_FLAGS_IDLE) != 0),
      ])
    }
  }
}

#endif
