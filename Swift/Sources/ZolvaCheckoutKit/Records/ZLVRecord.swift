/// An answer of the merchant's server: an immutable value.
///
/// Its properties read what stands under the record's own keys. Each is absent where the server sent
/// nothing or null there. Fields that are texts come as texts even where the server sent a number
/// or anything else, which then stands in the text as JSON; `json` has what was sent.
public protocol ZLVRecord: Sendable, Hashable, CustomStringConvertible {
  /// The record's fields as the server sent them; what has no property here is left out.
  var json: ZLVJSON { get }

  /// A record with these fields, for the host's own tests and previews.
  init(json: ZLVJSON)
}

extension ZLVRecord {
  /// The fields as JSON.
  public var description: String { json.jsonText }

  func text(_ key: String) -> String? { json[key]?.description }

  func record<Record: ZLVRecord>(_ key: String) -> Record {
    Record(json: json[key] ?? .object([:]))
  }

  func records<Record: ZLVRecord>(_ key: String) -> [Record]? {
    json[key]?.array?.map(Record.init(json:))
  }
}

/// A step that the server asks for after a link or a charge. The library has taken it by the time
/// that the record arrives: it chooses a page by the name and shows it.
public struct ZLVAction: ZLVRecord {
  public let json: ZLVJSON
  public init(json: ZLVJSON) { self.json = json }

  /// What the step is: "activation-deeplink" after a link, "user-verification" after a charge.
  public var name: String? { text("name") }
  /// The HTTP method that the server names; the library does not look at it.
  public var method: String? { text("method") }
  /// The page's URL.
  public var url: String? { text("url") }
}
