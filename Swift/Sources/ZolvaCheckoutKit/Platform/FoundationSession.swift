import Foundation

#if canImport(FoundationNetworking)
import FoundationNetworking
#endif

/// The session by Foundation's `URLSession` in its default configuration, with these rules of the
/// library's on top: an answer has a limit, and a redirect leads to http or https only, never from
/// https to http, and takes no header of the request to another origin.
public final class ZLVFoundationSession: ZLVURLSession {
  static let maximumAnswerSize = 8 * 1024 * 1024

  private let kept = Connections()

  public init() {}

  deinit { kept.session.finishTasksAndInvalidate() }

  public func dataTask(
    with request: URLRequest,
    completion: @escaping @Sendable (Result<(body: Data, statusCode: Int), any Error>) -> Void
  ) {
    #if canImport(FoundationNetworking)
    // On a kept connection that breaks this Foundation sends again what it sent, or never answers:
    // what must go out once gets a connection of its own.
    if request.httpMethod != "GET" {
      let own = Connections()
      own.send(request, completion)
      return own.session.finishTasksAndInvalidate()
    }
    #endif
    kept.send(request, completion)
  }
}

/// A session of Foundation's with what is under way on it.
private struct Connections: Sendable {
  private let exchanges = Exchanges()
  let session: URLSession

  init() {
    session = URLSession(configuration: .default, delegate: exchanges, delegateQueue: nil)
  }

  func send(_ request: URLRequest, _ completion: @escaping Exchanges.Completion) {
    let task = session.dataTask(with: request)
    exchanges.add(task, completion)
    task.resume()
  }
}

/// The session's requests that are under way.
private final class Exchanges: NSObject, URLSessionDataDelegate {
  typealias Completion = @Sendable (Result<(body: Data, statusCode: Int), any Error>) -> Void

  private struct Exchange {
    let completion: Completion
    var body = Data()
    var isRedirected = false
  }

  private let open = Locked<[Int: Exchange]>([:])

  func add(_ task: URLSessionTask, _ completion: @escaping Completion) {
    open.withLock { $0[task.taskIdentifier] = Exchange(completion: completion) }
  }

  func urlSession(_: URLSession, dataTask task: URLSessionDataTask, didReceive data: Data) {
    let isTooLarge = open.withLock { open in
      open[task.taskIdentifier]?.body.append(data)
      return (open[task.taskIdentifier]?.body.count ?? 0) > ZLVFoundationSession.maximumAnswerSize
    }
    if isTooLarge { end(task, .dataLengthExceedsMaximum) }
  }

  func urlSession(
    _: URLSession, task: URLSessionTask, willPerformHTTPRedirection response: HTTPURLResponse,
    newRequest: URLRequest, completionHandler: @escaping @Sendable (URLRequest?) -> Void
  ) {
    open.withLock { $0[task.taskIdentifier]?.isRedirected = true }
    guard let from = response.url, let to = newRequest.url else { return completionHandler(nil) }
    guard ["http", "https"].contains(to.scheme?.lowercased()) else {
      end(task, .unsupportedURL)
      return completionHandler(nil)
    }
    if from.scheme?.lowercased() == "https", to.scheme?.lowercased() == "http" {
      end(task, .appTransportSecurityRequiresSecureConnection)
      return completionHandler(nil)
    }
    var request = newRequest
    if from.origin != to.origin {
      for name in (request.allHTTPHeaderFields ?? [:]).keys where name != "Content-Type" {
        request.setValue(nil, forHTTPHeaderField: name)
      }
    }
    completionHandler(request)
  }

  func urlSession(_: URLSession, task: URLSessionTask, didCompleteWithError error: (any Error)?) {
    complete(task, error)
  }

  /// Ends an exchange from this side.
  private func end(_ task: URLSessionTask, _ code: URLError.Code) {
    complete(task, URLError(code))
    task.cancel()
  }

  private func complete(_ task: URLSessionTask, _ error: (any Error)?) {
    guard let exchange = open.withLock({ $0.removeValue(forKey: task.taskIdentifier) }) else {
      return
    }
    if let error {
      let sent = exchange.isRedirected ? [requestWasSentKey: true] : [:]
      exchange.completion(.failure((error as NSError).adding(sent)))
    } else {
      let statusCode = (task.response as? HTTPURLResponse)?.statusCode ?? 0
      exchange.completion(.success((exchange.body, statusCode)))
    }
  }
}

/// In an error's user info: the request had reached a server before the call failed, whatever the
/// code says.
private let requestWasSentKey = "ZLVErrorRequestWasSent"

extension URL {
  fileprivate var origin: [String] {
    let port = port ?? (scheme?.lowercased() == "https" ? 443 : 80)
    return [scheme ?? "", host ?? "", String(port)].map { $0.lowercased() }
  }
}

extension NSError {
  fileprivate func adding(_ more: [String: Any]) -> NSError {
    NSError(domain: domain, code: code, userInfo: userInfo.merging(more) { $1 })
  }

  /// What is text or number in the user info, and the description.
  var jsonUserInfo: ZLVJSON {
    var fields = userInfo.compactMapValues { value -> ZLVJSON? in
      switch value {
      case let text as String: .text(text)
      case let number as Int: ZLVJSON(number)
      case let bool as Bool: .bool(bool)
      default: nil
      }
    }
    fields[NSLocalizedDescriptionKey] = .text(localizedDescription)
    return .object(fields)
  }
}
