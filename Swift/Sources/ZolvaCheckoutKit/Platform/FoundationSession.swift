import Foundation

#if canImport(FoundationNetworking)
import FoundationNetworking
#endif

/// The session by Foundation's `URLSession` in its default configuration.
struct FoundationSession: ZLVURLSession {
  private let session = URLSession(configuration: .default)

  func dataTask(
    with request: URLRequest,
    completion: @escaping @Sendable (Result<(body: Data, statusCode: Int), any Error>) -> Void
  ) {
    session.dataTask(with: request) { body, response, error in
      if let error { return completion(.failure(error)) }
      completion(.success((body ?? Data(), (response as? HTTPURLResponse)?.statusCode ?? 0)))
    }.resume()
  }
}

extension NSError {
  /// What is text or number in the user info, and the description.
  var jsonUserInfo: ZLVJSON {
    var fields = userInfo.compactMapValues { value -> ZLVJSON? in
      switch value {
      case let text as String: .text(text)
      case let number as Int: ZLVJSON(number)
      default: nil
      }
    }
    fields[NSLocalizedDescriptionKey] = .text(localizedDescription)
    return .object(fields)
  }
}
