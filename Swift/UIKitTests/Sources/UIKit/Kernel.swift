// What the library uses of the phone's kernel, which comes with UIKit, from its public headers.

public typealias kern_return_t = Int32
public typealias integer_t = Int32
public typealias mach_port_t = UInt32
public typealias thread_act_t = UInt32
public typealias thread_act_array_t = UnsafeMutablePointer<thread_act_t>
public typealias thread_flavor_t = UInt32
public typealias mach_msg_type_number_t = UInt32
public typealias vm_address_t = UInt
public typealias vm_size_t = UInt

public let KERN_SUCCESS: Int32 = 0
public let CTL_HW: Int32 = 6
public let HW_MACHINE: Int32 = 1
public let THREAD_INFO_MAX: Int32 = 32
public let THREAD_BASIC_INFO: Int32 = 3
public let TH_FLAGS_IDLE: Int32 = 2
nonisolated(unsafe) public var mach_task_self_: mach_port_t = 7

/// A thread that works, one that is idle and one that cannot be read.
nonisolated(unsafe) public var threadsLent = 0

public func sysctl(
  _ name: UnsafeMutablePointer<Int32>, _ count: UInt32, _ old: UnsafeMutableRawPointer?,
  _ oldSize: UnsafeMutablePointer<Int>?, _: UnsafeMutableRawPointer?, _: Int
) -> Int32 {
  guard name[0] == CTL_HW, name[1] == HW_MACHINE, count == 2, let old, let oldSize else {
    return -1
  }
  "iPhone14,5".withCString { old.copyMemory(from: $0, byteCount: 11) }
  oldSize.pointee = 11
  return 0
}

public func task_threads(
  _ task: mach_port_t, _ list: UnsafeMutablePointer<thread_act_array_t?>,
  _ count: UnsafeMutablePointer<mach_msg_type_number_t>
) -> kern_return_t {
  let threads = thread_act_array_t.allocate(capacity: 3)
  for index in 0..<3 { threads[index] = thread_act_t(index) }
  (list.pointee, count.pointee) = (threads, 3)
  threadsLent += 3
  return KERN_SUCCESS
}

public func thread_info(
  _ thread: thread_act_t, _ flavor: thread_flavor_t, _ info: UnsafeMutablePointer<integer_t>,
  _ count: UnsafeMutablePointer<mach_msg_type_number_t>
) -> kern_return_t {
  guard flavor == 3, count.pointee >= 10, thread < 2 else { return 5 }
  info[4] = thread == 0 ? 250 : 0
  info[7] = thread == 0 ? 0 : TH_FLAGS_IDLE
  count.pointee = 10
  return KERN_SUCCESS
}

public func vm_deallocate(
  _: mach_port_t, _ address: vm_address_t, _ size: vm_size_t
) -> kern_return_t {
  thread_act_array_t(bitPattern: address)?.deallocate()
  threadsLent -= Int(size) / 4
  return KERN_SUCCESS
}
