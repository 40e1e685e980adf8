import Foundation
import Testing

@testable import ZolvaCheckoutKit

@Suite struct ValueTests {
  /// JSON; its text, integer, double and boolean; and what stands in a record's field for it.
  private static let readings: [(String, String?, Int64?, Double?, Bool?, String)] = [
    (#""ENABLED""#, "ENABLED", nil, nil, nil, "ENABLED"),
    (#""201 Created""#, "201 Created", 201, nil, nil, "201 Created"),
    (#""\t-7x""#, "\t-7x", -7, nil, nil, "\t-7x"),
    (#""+-7""#, "+-7", nil, nil, nil, "+-7"),
    (#""12.50""#, "12.50", 12, 12.5, nil, "12.50"),
    ("201", nil, 201, 201, nil, "201"),
    ("-12.75", nil, -12, -12.75, nil, "-12.75"),
    ("9223372036854775808", nil, nil, 9_223_372_036_854_775_808, nil, "9223372036854775808"),
    ("1e300", nil, nil, 1e300, nil, "1e+300"),
    ("false", nil, nil, nil, false, "false"),
    (
      #"{"b":[null,1],"a":"\"\\\u0000ü😀"}"#, nil, nil, nil, nil,
      #"{"a":"\"\\\u0000ü😀","b":[null,1]}"#
    ),
  ]

  @Test func readings() throws {
    for (json, text, integer, double, bool, field) in Self.readings {
      let value = try ZLVJSON(jsonText: json)
      #expect(value.text == text)
      #expect(value.integer == integer)
      #expect(value.double == double)
      #expect(value.bool == bool)
      #expect(ZLVTransactionResult(json: .object(["order_id": value])).orderId == field)
      #expect(try ZLVJSON(jsonText: value.jsonText) == value)
    }
    let deep = String(repeating: "[", count: 500) + String(repeating: "]", count: 500)
    #expect(try ZLVJSON(jsonText: deep).jsonText == deep)
    #expect(throws: (any Error).self) { try ZLVJSON(jsonText: "1e999") }
  }

  /// What is not there is left out; an amount goes out in its shortest spelling.
  @Test func requests() {
    var zolva = ZLVZolvaDetails(accountID: "a", paymentOptionToken: nil)
    #expect(zolva.json.jsonText == #"{"account_id":"a","enable_callback":true}"#)
    zolva.callbackEnabled = false
    #expect(zolva.json["enable_callback"] == .bool(false))
    let amount = ZLVTransactionDetails(grossAmount: 0.1, orderID: "o", currency: "EUR")
    #expect(amount.json.jsonText == #"{"currency":"EUR","gross_amount":0.1,"order_id":"o"}"#)
    let item = ZLVItemDetails(itemID: "1", name: "Tea", price: 3.133, quantity: 2)
    #expect(item.json.jsonText == #"{"id":"1","name":"Tea","price":3.133,"quantity":2}"#)
  }

  /// The whole of it is there for code that knows `NSError` only.
  @Test func errors() throws {
    let document =
      #"{"domain":"com.zolva.checkoutkit","code":406,"description":"[1]","failure_reason":"{}","request_may_have_taken_effect":false,"user_info":{"NSLocalizedDescription":[1],"n":null}}"#
    guard case .failure(let failure) = ZLVError.result(record: nil, error: document) else {
      throw CancellationError()
    }
    let error: any Error = failure
    let bridged = error as NSError
    #expect(bridged.domain == ZLVErrorDomain && bridged.code == 406)
    #expect(bridged.userInfo["NSLocalizedDescription"] as? [Int64] == [1])
    #expect(bridged.userInfo["n"] is NSNull)
    #expect(error.localizedDescription == "[1]" && bridged.localizedFailureReason == "{}")
    #expect((bridged as? ZLVError)?.requestMayHaveTakenEffect == false)

    guard case .failure(let lost) = ZLVError.result(record: #"{"a":1e999}"#, error: nil) else {
      throw CancellationError()
    }
    #expect(lost.code == 3840 && lost.requestMayHaveTakenEffect)
  }
}
