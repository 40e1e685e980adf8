import Foundation

/// A JSON value as a server sent it, or as it is to be sent.
///
/// What a server sends may be of another kind than expected, a number in place of a text or the
/// other way round. So the properties read it leniently, and none of them fails:
///
/// ```swift
/// record.json["status_code"]?.integer   // 201 for 201 and for "201"
/// ```
public enum ZLVJSON: Sendable, Hashable {
  case null
  case bool(Bool)
  /// A number in JSON's own spelling, so that no digit is lost: see `init(_:)`.
  case number(String)
  case text(String)
  case array([ZLVJSON])
  case object([String: ZLVJSON])

  /// A whole number.
  public init(_ number: some FixedWidthInteger) { self = .number("\(number)") }

  /// A number in its shortest spelling. One that is not finite has none in JSON: a request with it
  /// ends the program.
  public init(_ number: Double) { self = .number("\(number)") }

  /// The text, where it is one.
  public var text: String? {
    if case .text(let text) = self { text } else { nil }
  }

  /// The integral part of a number, or the decimal integer at the start of a text; nothing where
  /// there is none or 64 bits are too few.
  public var integer: Int64? {
    switch self {
    case .number(let number): Int64(number) ?? Double(number).flatMap(Self.integralPart)
    case .text(let text): Int64(Self.digits(atStartOf: text))
    default: nil
    }
  }

  /// The number, or the one that a whole text is.
  public var double: Double? {
    switch self {
    case .number(let text), .text(let text): Double(text)
    default: nil
    }
  }

  private static func integralPart(of number: Double) -> Int64? {
    Int64(exactly: number.rounded(.towardZero))
  }

  private static func digits(atStartOf text: String) -> Substring {
    let rest = text.drop { $0.isWhitespace }
    let sign = rest.prefix { $0 == "-" || $0 == "+" }.prefix(1)
    return rest[..<rest.dropFirst(sign.count).prefix { $0.isASCII && $0.isNumber }.endIndex]
  }

  /// The boolean, where it is one.
  public var bool: Bool? {
    if case .bool(let bool) = self { bool } else { nil }
  }

  /// The elements, where it is an array.
  public var array: [ZLVJSON]? {
    if case .array(let array) = self { array } else { nil }
  }

  /// The members, where it is an object.
  public var object: [String: ZLVJSON]? {
    if case .object(let object) = self { object } else { nil }
  }

  /// The member of that name, where it is an object with one.
  public subscript(name: String) -> ZLVJSON? { object?[name] }
}

extension ZLVJSON: CustomStringConvertible {
  /// A text as it is, anything else as JSON.
  public var description: String { text ?? jsonText }

  /// JSON without spaces, the members in the order of their names.
  public var jsonText: String {
    var output = ""
    write(to: &output)
    return output
  }

  private func write(to output: inout String) {
    switch self {
    case .null: output += "null"
    case .bool(let bool): output += bool ? "true" : "false"
    case .number(let number): output += number
    case .text(let text): Self.write(text, to: &output)
    case .array(let array):
      Self.write(array, between: "[]", to: &output) { $0.write(to: &$1) }
    case .object(let object):
      Self.write(object.sorted { $0.key < $1.key }, between: "{}", to: &output) {
        Self.write($0.key, to: &$1)
        $1 += ":"
        $0.value.write(to: &$1)
      }
    }
  }

  private static func write<Element>(
    _ elements: [Element], between brackets: String, to output: inout String,
    each: (Element, inout String) -> Void
  ) {
    output.append(brackets.first!)
    for (index, element) in elements.enumerated() {
      if index > 0 { output += "," }
      each(element, &output)
    }
    output.append(brackets.last!)
  }

  private static func write(_ text: String, to output: inout String) {
    output += "\""
    for scalar in text.unicodeScalars {
      switch scalar {
      case "\"", "\\": output += "\\\(scalar)"
      case "\0"..<" ": output += String(format: "\\u%04x", scalar.value)
      default: output.unicodeScalars.append(scalar)
      }
    }
    output += "\""
  }
}

extension ZLVJSON {
  /// Reads a JSON text.
  init(jsonText: String) throws {
    let options = JSONSerialization.ReadingOptions.fragmentsAllowed
    self.init(
      foundation: try JSONSerialization.jsonObject(with: Data(jsonText.utf8), options: options))
  }

  private init(foundation: Any) {
    switch foundation {
    case let text as String: self = .text(text)
    case let object as [String: Any]: self = .object(object.mapValues(Self.init(foundation:)))
    case let array as [Any]: self = .array(array.map(Self.init(foundation:)))
    case let number as NSNumber: self.init(number)
    default: self = .null
    }
  }

  /// What kind of number one is, only its encoding tells.
  private init(_ number: NSNumber) {
    switch String(cString: number.objCType) {
    case "c", "B": self = .bool(number.boolValue)
    case "d", "f": self.init(number.doubleValue)
    case "Q": self.init(number.uint64Value)
    default: self.init(number.int64Value)
    }
  }

  /// As Foundation has it: `String`, `NSNumber`, `NSNull`, arrays and dictionaries.
  var foundation: Any {
    switch self {
    case .null: NSNull()
    case .bool(let bool): NSNumber(value: bool)
    case .number(let number):
      Int64(number).map { NSNumber(value: $0) } ?? NSNumber(value: Double(number) ?? .nan)
    case .text(let text): text
    case .array(let array): array.map(\.foundation)
    case .object(let object): object.mapValues(\.foundation)
    }
  }
}
