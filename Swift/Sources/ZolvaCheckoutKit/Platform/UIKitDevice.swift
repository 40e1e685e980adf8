#if canImport(UIKit)

import Foundation
import UIKit

let standardDevice: any Device = UIKitDevice()

/// What UIKit knows of the device, and Foundation of the rest. UIKit is asked on the main thread,
/// afresh each time; another thread, which must not wait for that, gets what was known last.
final class UIKitDevice: Device {
  private static let facts: [Fact: @MainActor @Sendable () -> ZLVJSON?] = [
    .identifierForVendor: { (UIDevice.current.identifierForVendor?.uuidString).map(ZLVJSON.text) },
    .mainScreenSize: {
      let size = UIScreen.main.bounds.size
      return .object(["width": ZLVJSON(Double(size.width)), "height": ZLVJSON(Double(size.height))])
    },
    .name: { .text(UIDevice.current.name) },
    .systemVersion: { .text(UIDevice.current.systemVersion) },
  ]

  private let known = Locked<[Fact: ZLVJSON]>([:])
  private let foundation = FoundationDevice()

  func fact(_ fact: Fact) -> ZLVJSON? {
    guard let ask = Self.facts[fact] else { return foundation.fact(fact) }
    guard isOnMain else { return known.value[fact] }
    let value = MainActor.assumeIsolated(ask)
    known.withLock { $0[fact] = value }
    return value
  }
}

#endif
