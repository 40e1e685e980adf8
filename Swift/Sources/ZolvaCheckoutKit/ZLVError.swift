import Foundation

/// Why a call failed. It is an `NSError`:
///
/// | domain | code | meaning |
/// |---|---|---|
/// | `ZLVErrorDomain` | the status code | your server refused; the description is its message and the failure reason its validation messages, if any |
/// | `ZLVCheckoutErrorDomain` | -1 | the answer asked for a page but gave no URL to open |
/// | `NSURLErrorDomain` | `URLError.Code` | there was no answer: not connected, timed out, certificate refused, … |
/// | `NSCocoaErrorDomain` | 3840 | the answer is not the JSON object it should be, or does not fit its record |
/// | `NSPOSIXErrorDomain` | 12 | this machine has no memory, thread or descriptor left |
public final class ZLVError: NSError, @unchecked Sendable {
  /// Whether the server may have carried out the request all the same. Where it is true after a
  /// charge, ask your server what became of the order before you charge again.
  public let requestMayHaveTakenEffect: Bool

  private let shownDescription: String
  private let shownReason: String?

  /// The error in a document of the library's.
  init(document: ZLVJSON) {
    let description = document["description"]?.text
    shownDescription = description ?? ""
    shownReason = document["failure_reason"]?.text
    requestMayHaveTakenEffect = document["request_may_have_taken_effect"]?.bool ?? true
    super.init(
      domain: document["domain"]?.text ?? NSCocoaErrorDomain,
      code: document["code"]?.integer.flatMap { Int(exactly: $0) } ?? 0,
      userInfo: document["user_info"]?.object?.mapValues(\.foundation) ?? [:])
  }

  /// One of this side's own, after which the request may have taken effect.
  convenience init(domain: String, code: Int, description: String) {
    self.init(
      document: .object([
        "domain": .text(domain), "code": ZLVJSON(code), "description": .text(description),
        "user_info": .object([NSLocalizedDescriptionKey: .text(description)]),
      ]))
  }

  /// What the library answered, as Swift has it.
  static func result(record: String?, error: String?) -> Result<ZLVJSON, ZLVError> {
    do {
      if let record { return .success(try ZLVJSON(jsonText: record)) }
      return .failure(ZLVError(document: try ZLVJSON(jsonText: error ?? "")))
    } catch {
      return .failure(
        ZLVError(
          domain: NSCocoaErrorDomain, code: 3840,
          description: "The answer holds a number that is too large."))
    }
  }

  @available(*, unavailable)
  required init?(coder: NSCoder) { nil }

  /// For the user to read, always a text: the server's message where it sent one, in whatever form.
  public override var localizedDescription: String { shownDescription }

  /// The server's validation messages as a text; nothing where there are none.
  public override var localizedFailureReason: String? { shownReason }
}

/// The domain of an error that the merchant's server answered with.
public let ZLVErrorDomain = "com.zolva.checkoutkit"

/// The domain of an answer that asks for a page but gives no URL to open.
public let ZLVCheckoutErrorDomain = "com.zolva.checkoutkit.checkout"
