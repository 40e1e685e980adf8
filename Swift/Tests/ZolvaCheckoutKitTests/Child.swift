import Foundation

/// A program that ends with this process, however that does.
final class Child {
  private let process = Process()
  private let (input, output) = (Pipe(), Pipe())
  private var read = Data()

  /// `program` is one, or the variable of the environment with the path of one of the build's.
  init(_ program: String, _ arguments: [String]) throws {
    let path = ProcessInfo.processInfo.environment[program] ?? program
    process.executableURL = URL(fileURLWithPath: "/usr/bin/setpriv")
    process.arguments = ["--pdeathsig", "TERM", path] + arguments
    process.standardInput = input
    process.standardOutput = output
    try process.run()
  }

  deinit { process.terminate() }

  /// Waits for a line of its output; nil at the end.
  func line() -> String? {
    while true {
      if let end = read.firstIndex(of: UInt8(ascii: "\n")) {
        defer { read = Data(read[(end + 1)...]) }
        return String(decoding: read[..<end], as: UTF8.self)
      }
      let more = output.fileHandleForReading.availableData
      if more.isEmpty { return nil }
      read += more
    }
  }

  func tell(_ line: String) { input.fileHandleForWriting.write(Data((line + "\n").utf8)) }

  /// Drops what else it prints, or it would stall.
  func ignoreOutput() { output.fileHandleForReading.readabilityHandler = { _ = $0.availableData } }
}
