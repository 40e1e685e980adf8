// swift-tools-version: 6.0
import PackageDescription

// The C library that all of it stands on: on Apple's systems the framework that scripts/xcframework
// makes, elsewhere the one that is installed.
#if canImport(Darwin)
let core = Target.binaryTarget(
  name: "CZolvaCheckoutKit", path: "build/apple/CZolvaCheckoutKit.xcframework")
#else
let core = Target.systemLibrary(
  name: "CZolvaCheckoutKit", path: "Swift/Sources/CZolvaCheckoutKit",
  pkgConfig: "zolvacheckoutkit-c")
#endif

let package = Package(
  name: "ZolvaCheckoutKit",
  platforms: [.iOS(.v15)],
  products: [.library(name: "ZolvaCheckoutKit", targets: ["ZolvaCheckoutKit"])],
  targets: [
    core,
    .target(
      name: "ZolvaCheckoutKit", dependencies: ["CZolvaCheckoutKit"],
      path: "Swift/Sources/ZolvaCheckoutKit"),
    .testTarget(
      name: "ZolvaCheckoutKitTests", dependencies: ["ZolvaCheckoutKit"],
      path: "Swift/Tests/ZolvaCheckoutKitTests"),
  ],
  swiftLanguageModes: [.v6]
)
