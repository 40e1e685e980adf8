import Foundation
import Testing

@testable import ZolvaCheckoutKit

#if canImport(FoundationNetworking)
import FoundationNetworking
#endif

private typealias Answer = Result<(body: Data, statusCode: Int), any Error>

/// A session that does with a call what the test says. Usage events are answered at once.
private final class Session: ZLVURLSession {
  typealias Completion = @Sendable (Answer) -> Void

  static let shared = Session()
  let calls = Locked(0)
  let behaviour = Locked<@Sendable (@escaping Completion) -> Void>({ _ in })

  func dataTask(with request: URLRequest, completion: @escaping Completion) {
    if request.url!.path.hasSuffix("/upload") {
      return DispatchQueue.global().async { completion(.success((Data("{}".utf8), 200))) }
    }
    calls.withLock { $0 += 1 }
    behaviour.value(completion)
  }

  static func json(_ text: String) -> Answer { .success((Data(text.utf8), 200)) }
}

/// Every call is answered once, on the main thread, whatever its session does.
@Suite(.serialized) @MainActor struct AnswerTests {
  private static let faults = Locked<[String]>([])

  init() {
    Session.shared.calls.value = 0
    if ZLVPlatform.isInstalled { return }
    var platform = ZLVPlatform()
    platform.urlSession = Session.shared
    platform.applicationVersion = "2.1"
    platform.fault = { text in Self.faults.withLock { $0.append(text) } }
    ZLVPlatform.install(platform)
    ZLVClient.initWithMerchantServerURL(
      "https://shop.example", merchantId: "M-1001", callbackUrl: "shop://done")
  }

  private func enquire() async -> Result<ZLVAccountInfo, any Error> {
    do { return .success(try await ZLVClient.enquireAccount(withAccountID: "acc-1")) } catch {
      return .failure(error)
    }
  }

  private func error(_ behaviour: @escaping @Sendable (@escaping Session.Completion) -> Void) async
    -> ZLVError?
  {
    Session.shared.behaviour.value = behaviour
    guard case .failure(let error) = await enquire() else { return nil }
    return error as? ZLVError
  }

  @Test func aThousandCallsFromManyThreadsAnsweredTwice() async {
    Session.shared.behaviour.value = { completion in
      for _ in 0..<2 {
        DispatchQueue.global().async { completion(Session.json(#"{"account_id":"acc-1"}"#)) }
      }
    }
    let count = 1000
    let answers = Locked(0)
    await withCheckedContinuation { (continuation: CheckedContinuation<Void, Never>) in
      for thread in 0..<4 {
        DispatchQueue.global().async {
          for _ in stride(from: thread, to: count, by: 4) {
            ZLVClient.enquireAccount(withAccountID: "acc-1") { answer in
              dispatchPrecondition(condition: .onQueue(.main))
              #expect(throws: Never.self) { try answer.get() }
              if answers.withLock({
                $0 += 1
                return $0
              }) == count {
                continuation.resume()
              }
            }
          }
        }
      }
    }
    #expect(await ZLVPlatform.untilIdle(limit: 20))
    #expect(answers.value == count)
    #expect(Session.shared.calls.value == count)
  }

  @Test func failures() async {
    let dropped = await error { _ in }
    #expect(dropped?.domain == NSURLErrorDomain && dropped?.code == -999)
    #expect(dropped?.requestMayHaveTakenEffect == true)

    let own = await error {
      let info = ["NSLocalizedDescription": "No tunnel", "depth": 3] as [String: Any]
      $0(.failure(NSError(domain: "com.example.vpn", code: 77, userInfo: info)))
    }
    #expect(own?.domain == "com.example.vpn" && own?.code == 77)
    #expect(own?.localizedDescription == "No tunnel" && own?.userInfo["depth"] as? Int64 == 3)

    let early = await error { $0(.failure(URLError(.cannotFindHost))) }
    #expect(early?.code == -1003 && early?.requestMayHaveTakenEffect == false)

    let strange = await error { $0(.success((Data(), 99))) }
    #expect(strange?.domain == NSURLErrorDomain && strange?.code == -1011)
  }

  /// An answer whose structure does not fit is a fault, and the call is answered all the same.
  @Test func misfit() async {
    let error = await error { $0(Session.json(#"{"metadata":5}"#)) }
    #expect(error?.domain == NSCocoaErrorDomain && error?.code == 3840)
    #expect(Self.faults.value.count == 1)
  }

  /// Cancelling detaches the caller: nothing more is sent, and the answer finds nobody.
  @Test func cancelling() async throws {
    let waiting = Locked<Session.Completion?>(nil)
    Session.shared.behaviour.value = { waiting.value = $0 }
    let task = Task { await enquire() }
    while waiting.value == nil { await Task.yield() }
    task.cancel()
    guard case .failure(let error) = await task.value else { throw CancellationError() }
    #expect(error is CancellationError)
    waiting.value?(Session.json("{}"))
    waiting.value = nil
    #expect(await ZLVPlatform.untilIdle(limit: 20))

    let early = Task {
      while !Task.isCancelled { await Task.yield() }
      return await enquire()
    }
    early.cancel()
    await #expect(throws: CancellationError.self) { try await early.value.get() }
    #expect(Session.shared.calls.value == 1)
  }

  /// A mistake in the program ends it.
  @Test func mistakes() async {
    await #expect(processExitsWith: .failure) {
      ZLVClient.enquireAccount(withAccountID: "too early") { _ in }
    }
  }
}
