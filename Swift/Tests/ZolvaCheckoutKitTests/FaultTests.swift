import Foundation
import Testing

@testable import ZolvaCheckoutKit

#if canImport(FoundationNetworking)
import FoundationNetworking
#endif

/// On these Foundation ends the process.
private let ending = [
  "closed in the header, after an answer 100", "closed before the header's end",
  "to the callback URL",
]
/// These it reads for ever; or they need an authority that it does not take from a test.
private let notPlayed = [
  "byte after byte of the body, each within the time-out, without end", "header lines without end",
  "chunk trailers without end", "chunks without end", "gzip of nothing without end",
  "from https to http",
]

/// Plays the faults to Foundation's session and checks that what differs from the library's own is
/// what the document says. With ZLV_WRITE_FAULTS=FILE in the environment it is written instead.
@Suite struct FaultTests {
  @Test func differAsDocumented() async {
    await #expect(processExitsWith: .success) {
      do {
        let document = "Docs/faults-urlsession.md"
        var text = try String(contentsOfFile: document, encoding: .utf8)
        let documented = text
        text = String(text[..<text.range(of: "|---|---|---|\n")!.upperBound])
        let usual = try await usualOutcomes()
        for (fault, outcome) in try await FaultClient().run(["--"] + ending + notPlayed) {
          let other = usual[fault] ?? "?"
          if outcome != other { text += "| \(fault) | \(other) | \(outcome) |\n" }
        }
        if let path = ProcessInfo.processInfo.environment["ZLV_WRITE_FAULTS"] {
          return try text.write(toFile: path, atomically: true, encoding: .utf8)
        }
        #expect(text == documented)
      } catch { Issue.record(error) }
    }
  }

  @Test(arguments: ending) func endTheProcess(fault: String) async {
    await #expect(processExitsWith: .failure) { [fault] in
      _ = try? await FaultClient().run(["--only", fault])
    }
  }
}

/// What the library's own session makes of each: domain and code, or that there is a record.
private func usualOutcomes() async throws -> [String: String] {
  let lines = try String(contentsOfFile: "Docs/faults.md", encoding: .utf8).split(separator: "\n")
  let rows = lines.map {
    $0.components(separatedBy: " | ").map { $0.trimmingCharacters(in: [" ", "|"]) }
  }
  return Dictionary(
    rows.filter { $0.count > 3 }.map { row in
      let sent = row[3].range(of: "Sent ").map { " " + row[3][$0.lowerBound...] } ?? ""
      return (row[0], (row[1].isEmpty ? "the record" : "\(row[1]) \(row[2])") + sent)
    }, uniquingKeysWith: { first, _ in first })
}

/// Foundation's session with the fault's time-out, a new one for each fault.
private final class TimedSession: ZLVURLSession {
  let session = Locked(ZLVFoundationSession())
  let timeout = Locked(60.0)

  func dataTask(
    with request: URLRequest,
    completion: @escaping @Sendable (Result<(body: Data, statusCode: Int), any Error>) -> Void
  ) {
    var request = request
    request.timeoutInterval = timeout.value
    session.value.dataTask(with: request, completion: completion)
  }
}

@MainActor private struct FaultClient {
  private let session = TimedSession()

  /// Each fault that the server plays and its outcome, in order.
  func run(_ arguments: [String]) async throws -> [(fault: String, outcome: String)] {
    let server = try Child("ZLV_FAULT_SERVER", arguments)
    var platform = ZLVPlatform()
    platform.urlSession = session
    platform.applicationVersion = "2.1"
    platform.analyticsRootURL = URL(string: "http://127.0.0.1:1/")
    ZLVPlatform.install(platform)
    var outcomes: [(fault: String, outcome: String)] = []
    var isKept = false
    while let line = server.line() {
      let fields = line.components(separatedBy: "\t")
      let (section, what) = (fields[0], fields[1])
      let isEarlier = section.isEmpty && what.isEmpty
      if isEarlier || !section.isEmpty && !isKept { session.session.value = ZLVFoundationSession() }
      session.timeout.value = Double(fields[4])!
      ZLVClient.initWithMerchantServerURL(fields[3], merchantId: "M", callbackUrl: "app://done")
      let outcome = await outcome(of: fields[2])
      if !section.isEmpty, section != "TLS" { outcomes.append((what, outcome)) }
      let tellsTimes = outcomes.last.map {
        $0.fault.hasPrefix("POST,") || $0.fault.hasPrefix("GET,")
      }
      if section.isEmpty, !what.isEmpty, tellsTimes == true {
        outcomes[outcomes.count - 1].outcome += " Sent \(what == "1" ? "once" : what + " times")."
      }
      isKept = isEarlier
      server.tell("")
    }
    return outcomes
  }

  private func outcome(of method: String) async -> String {
    do {
      if method == "GET" {
        _ = try await ZLVClient.enquireAccount(withAccountID: "acc-1")
      } else {
        _ = try await ZLVClient.createTransaction(
          withPaymentType: "zolva", viewController: nil,
          zolvaDetails: .init(accountID: "acc-1", paymentOptionToken: "t"),
          transactionDetails: .init(grossAmount: 1, orderID: "o", currency: "EUR"),
          customerDetails: .init(phoneNumber: nil), itemDetails: nil)
      }
      return "the record"
    } catch {
      let error = error as NSError
      return "\(error.domain) \(error.code)"
    }
  }
}
