// Fields that are absent are left out of the request. Nothing is checked on this side.

/// The wallet user whose account is to be linked.
public struct ZLVPartnerDetails: Sendable, Hashable {
  /// Without the country's code: "7700900123".
  public var phoneNumber: String?
  /// The country's calling code, digits only: "44".
  public var countryCode: String?
  /// Where the wallet leads the user in the end; where it is absent, to the configured one.
  public var callbackUrl: String?

  public init(phoneNumber: String?, countryCode: String?) {
    self.phoneNumber = phoneNumber
    self.countryCode = countryCode
  }

  var json: ZLVJSON {
    .ofFields(
      ("phone_number", phoneNumber), ("country_code", countryCode), ("redirect_url", callbackUrl))
  }
}

/// The linked account that a charge is paid from.
public struct ZLVZolvaDetails: Sendable, Hashable {
  /// The account's id, from the link.
  public var accountID: String?
  /// The way to pay, from the enquiry.
  public var paymentOptionToken: String?
  /// Where the wallet leads the user in the end; where it is absent, to the configured one.
  public var callbackUrl: String?
  /// Whether the wallet is to lead the user back at all.
  public var callbackEnabled = true

  public init(accountID: String?, paymentOptionToken: String?) {
    self.accountID = accountID
    self.paymentOptionToken = paymentOptionToken
  }

  var json: ZLVJSON {
    .ofFields(
      ("account_id", accountID), ("payment_option_token", paymentOptionToken),
      ("callback_url", callbackUrl), ("enable_callback", callbackEnabled))
  }
}

/// What is to be paid.
public struct ZLVTransactionDetails: Sendable, Hashable {
  /// The amount, in `currency`; sent in its shortest spelling. Must be finite.
  public var grossAmount: Double?
  /// The merchant's own number of the order, under which the server remembers the charge.
  public var orderID: String?
  /// ISO 4217: "EUR".
  public var currency: String?

  public init(grossAmount: Double?, orderID: String?, currency: String?) {
    self.grossAmount = grossAmount
    self.orderID = orderID
    self.currency = currency
  }

  var json: ZLVJSON {
    .ofFields(("gross_amount", grossAmount), ("order_id", orderID), ("currency", currency))
  }
}

/// Who pays.
public struct ZLVCustomerDetails: Sendable, Hashable {
  /// With the country's code: "+447700900123".
  public var phoneNumber: String?
  /// As the customer gives it.
  public var firstName: String?
  /// As the customer gives it.
  public var lastName: String?
  /// Where the merchant writes to.
  public var email: String?

  public init(
    phoneNumber: String?, firstName: String? = nil, lastName: String? = nil, email: String? = nil
  ) {
    self.phoneNumber = phoneNumber
    self.firstName = firstName
    self.lastName = lastName
    self.email = email
  }

  var json: ZLVJSON {
    .ofFields(
      ("phone", phoneNumber), ("first_name", firstName), ("last_name", lastName), ("email", email))
  }
}

/// One thing that is bought.
public struct ZLVItemDetails: Sendable, Hashable {
  /// The merchant's own id of it.
  public var itemID: String?
  /// What it is called.
  public var name: String?
  /// Of one, in the currency of the transaction. Must be finite.
  public var price: Double?
  /// How many of them.
  public var quantity: Int?
  /// The merchant's own category of it.
  public var category: String?

  public init(
    itemID: String?, name: String?, price: Double?, quantity: Int?, category: String? = nil
  ) {
    self.itemID = itemID
    self.name = name
    self.price = price
    self.quantity = quantity
    self.category = category
  }

  var json: ZLVJSON {
    .ofFields(
      ("id", itemID), ("name", name), ("price", price), ("quantity", quantity),
      ("category", category))
  }
}

/// What a field of a request can be.
protocol ZLVField {
  var json: ZLVJSON { get }
}

extension String: ZLVField { var json: ZLVJSON { .text(self) } }
extension Double: ZLVField { var json: ZLVJSON { ZLVJSON(self) } }
extension Int: ZLVField { var json: ZLVJSON { ZLVJSON(self) } }
extension Bool: ZLVField { var json: ZLVJSON { .bool(self) } }

extension ZLVJSON {
  /// An object of the fields that are there.
  fileprivate static func ofFields(_ fields: (String, (any ZLVField)?)...) -> ZLVJSON {
    .object(
      Dictionary(
        uniqueKeysWithValues: fields.compactMap { key, value in
          value.map { (key, $0.json) }
        }))
  }
}
