/// The answer to a charge. Where there was a page it is gone; your server knows what became of the
/// order. Which codes and statuses there are is the server's.
public struct ZLVTransactionResult: ZLVRecord {
  public let json: ZLVJSON
  public init(json: ZLVJSON) { self.json = json }

  /// The server's status code, "200" or "201" for example.
  public var statusCode: String? { text("status_code") }
  /// The server's message.
  public var statusMessage: String? { text("status_message") }
  /// The server's id of the charge.
  public var transactionId: String? { text("transaction_id") }
  /// The order that was charged.
  public var orderId: String? { text("order_id") }
  /// The amount, in `currency`: "12.50".
  public var grossAmount: String? { text("gross_amount") }
  /// ISO 4217: "EUR".
  public var currency: String? { text("currency") }
  /// The payment type that was asked for.
  public var paymentType: String? { text("payment_type") }
  /// When the server made the charge, as it writes it.
  public var transactionTime: String? { text("transaction_time") }
  /// Where the charge was when the server answered: "settlement" or "pending" for example.
  public var transactionStatus: String? { text("transaction_status") }
  /// The server's verdict on fraud.
  public var fraudStatus: String? { text("fraud_status") }
  /// The wallet's own code, where it gave one.
  public var channelResponseCode: String? { text("channel_response_code") }
  /// The wallet's own message, where it gave one.
  public var channelResponseMessage: String? { text("channel_response_message") }
  /// What the server asked for; absent where it sent no list.
  public var actions: [ZLVAction]? { records("actions") }
}
