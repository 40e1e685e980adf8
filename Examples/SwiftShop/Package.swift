// swift-tools-version: 6.0
import PackageDescription

let package = Package(
  name: "SwiftShop",
  platforms: [.iOS(.v15)],
  dependencies: [.package(name: "ZolvaCheckoutKit", path: "../..")],
  targets: [
    // All calls into the library.
    .target(name: "Checkout", dependencies: ["ZolvaCheckoutKit"]),
    // The application; on a phone its Xcode project has this target's sources and @main.
    .target(name: "ShopApp", dependencies: ["Checkout"]),
    // The same shop for a terminal.
    .executableTarget(name: "SwiftShop", dependencies: ["Checkout"]),
  ],
  swiftLanguageModes: [.v6]
)
