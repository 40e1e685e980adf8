/// What every answer about an account has. Which codes and statuses there are is the server's.
public protocol ZLVAccountRecord: ZLVRecord {}

extension ZLVAccountRecord {
  /// The server's status code, "200" or "201" for example.
  public var statusCode: String? { text("status_code") }
  /// The payment type that the account was linked with.
  public var paymentType: String? { text("payment_type") }
  /// The account's id, to enquire, charge and unlink it by.
  public var accountID: String? { text("account_id") }
  /// What has become of the link: "PENDING" or "ENABLED" for example.
  public var accountStatus: String? { text("account_status") }
  /// The wallet's own code, where it gave one.
  public var channelResponseCode: String? { text("channel_response_code") }
  /// The wallet's own message, where it gave one.
  public var channelResponseMessage: String? { text("channel_response_message") }
}

/// The answer to a link. Where there was a page it is gone; enquire the account to learn what the
/// user did there.
public struct ZLVLinkAccountResult: ZLVAccountRecord {
  public let json: ZLVJSON
  public init(json: ZLVJSON) { self.json = json }

  /// What the server asked for; absent where it sent no list.
  public var actions: [ZLVAction]? { records("actions") }
}

/// The answer to unlinking an account.
public struct ZLVDisableAccountResult: ZLVAccountRecord {
  public let json: ZLVJSON
  public init(json: ZLVJSON) { self.json = json }
}

/// The answer to an enquiry: the account with what it can pay by.
public struct ZLVAccountInfo: ZLVAccountRecord {
  public let json: ZLVJSON
  public init(json: ZLVJSON) { self.json = json }

  /// Always there, empty where the server sent none.
  public var metadata: ZLVAccountMetadata { record("metadata") }
}

/// What belongs to an account.
public struct ZLVAccountMetadata: ZLVRecord {
  public let json: ZLVJSON
  public init(json: ZLVJSON) { self.json = json }

  /// Ways to pay, in the server's order; absent where it sent no list.
  public var paymentOptions: [ZLVPaymentOptions]? { records("payment_options") }
}

/// One way to pay from an account.
public struct ZLVPaymentOptions: ZLVRecord {
  public let json: ZLVJSON
  public init(json: ZLVJSON) { self.json = json }

  /// Its name, as the server has it.
  public var name: String? { text("name") }
  /// Whether the server sent "active" at all: any value counts, `false` too; only null does not.
  public var active: Bool { json["active"]?.bool ?? false }
  /// Always there, empty where the server sent none.
  public var balance: ZLVPaymentOptionsBalance { record("balance") }
  /// Whatever the server sent there.
  public var metadata: ZLVJSON? { json["metadata"] }
  /// What a charge names this way to pay by.
  public var token: String? { text("token") }
}

/// How much there is to pay from.
public struct ZLVPaymentOptionsBalance: ZLVRecord {
  public let json: ZLVJSON
  public init(json: ZLVJSON) { self.json = json }

  /// The amount, in `currency`: "250.00".
  public var value: String? { text("value") }
  /// ISO 4217: "EUR".
  public var currency: String? { text("currency") }
}
