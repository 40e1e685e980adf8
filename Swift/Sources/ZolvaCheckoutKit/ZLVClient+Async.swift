import Foundation

extension ZLVClient {
  /// As `linkAccount(withPaymentType:zolvaPartnerDetails:viewController:completion:)`; throws
  /// `ZLVError` or, cancelled, `CancellationError`.
  public static func linkAccount(
    withPaymentType paymentType: String, zolvaPartnerDetails: ZLVPartnerDetails?,
    viewController: ZLVViewController?
  ) async throws -> ZLVLinkAccountResult {
    try await answered {
      linkAccount(
        withPaymentType: paymentType, zolvaPartnerDetails: zolvaPartnerDetails,
        viewController: viewController, completion: $0)
    }
  }

  /// As `enquireAccount(withAccountID:completion:)`; throws `ZLVError` or, cancelled,
  /// `CancellationError`.
  public static func enquireAccount(
    withAccountID accountID: String
  ) async throws -> ZLVAccountInfo {
    try await answered { enquireAccount(withAccountID: accountID, completion: $0) }
  }

  /// As `disableAccount(withAccountID:completion:)`; throws `ZLVError` or, cancelled,
  /// `CancellationError`.
  public static func disableAccount(
    withAccountID accountID: String
  ) async throws -> ZLVDisableAccountResult {
    try await answered { disableAccount(withAccountID: accountID, completion: $0) }
  }

  /// As `createTransaction(withPaymentType:viewController:zolvaDetails:transactionDetails:`
  /// `customerDetails:itemDetails:completion:)`; throws `ZLVError` or, cancelled,
  /// `CancellationError`, after which the charge may have been made.
  public static func createTransaction(
    withPaymentType paymentType: String, viewController: ZLVViewController?,
    zolvaDetails: ZLVZolvaDetails, transactionDetails: ZLVTransactionDetails,
    customerDetails: ZLVCustomerDetails, itemDetails: [ZLVItemDetails]?
  ) async throws -> ZLVTransactionResult {
    try await answered {
      createTransaction(
        withPaymentType: paymentType, viewController: viewController, zolvaDetails: zolvaDetails,
        transactionDetails: transactionDetails, customerDetails: customerDetails,
        itemDetails: itemDetails, completion: $0)
    }
  }

  /// What a call is answered with, or the cancellation of whoever waits for it, whichever is first.
  private static func answered<Record: ZLVRecord>(
    _ call: (@escaping Completion<Record>) -> Void
  ) async throws -> Record {
    try Task.checkCancellation()
    let waiting = Locked<CheckedContinuation<Record, any Error>?>(nil)
    let resume = { @Sendable (result: Result<Record, any Error>) -> Void in
      waiting.withLock { $0.take() }?.resume(with: result)
    }
    return try await withTaskCancellationHandler {
      try await withCheckedThrowingContinuation { continuation in
        waiting.value = continuation
        if Task.isCancelled { return resume(.failure(CancellationError())) }
        call { resume($0.mapError { $0 }) }
      }
    } onCancel: {
      resume(.failure(CancellationError()))
    }
  }
}
