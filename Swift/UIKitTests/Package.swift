// swift-tools-version: 6.0
import PackageDescription

// The package's own sources once more, beside modules that stand in for the phone's.
let package = Package(
  name: "UIKitTests",
  targets: [
    .target(name: "UIKit"),
    .target(name: "SafariServices", dependencies: ["UIKit"]),
    .systemLibrary(name: "CZolvaCheckoutKit", pkgConfig: "zolvacheckoutkit-c"),
    .target(
      name: "ZolvaCheckoutKit", dependencies: ["CZolvaCheckoutKit", "UIKit", "SafariServices"]),
    .testTarget(
      name: "UIKitTests", dependencies: ["ZolvaCheckoutKit", "UIKit", "SafariServices"],
      // Swift Testing has an addition for the phone's own UIKit.
      swiftSettings: [.unsafeFlags(["-Xfrontend", "-disable-cross-import-overlays"])]),
  ],
  swiftLanguageModes: [.v6]
)
