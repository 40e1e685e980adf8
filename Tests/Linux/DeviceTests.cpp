#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>
#include <thread>

#include <gtest/gtest.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVLinuxDevice.h>

namespace {

/// A folder that stands for a system's root.
class Device : public testing::Test {
 protected:
  ~Device() override { std::filesystem::remove_all(root_); }

  void write(const std::string& file, const std::string& contents) const {
    std::filesystem::create_directories((root_ / file).parent_path());
    std::ofstream(root_ / file) << contents;
  }

  [[nodiscard]] ZLVLinuxDevice device(const std::string& identifier = "com.example.shop") const {
    return ZLVLinuxDevice({.identifier = identifier, .displayName = "Shop", .shortVersion = "2.1"},
                          root_);
  }

  const std::filesystem::path root_ =
      std::filesystem::temp_directory_path() / ("zolva-device-" + std::to_string(getpid()));
};

TEST_F(Device, NamesTheMachineAsItIsNow) {
  utsname kernel{};
  uname(&kernel);
  write("sys/class/dmi/id/uevent", "");
  write("sys/firmware/devicetree/base/name", "");
  const auto now = device();
  EXPECT_EQ(now.machine(), kernel.machine);
  write("sys/firmware/devicetree/base/model", std::string("Board 4 B\0", 10));
  EXPECT_EQ(now.machine(), "Board 4 B");
  write("sys/class/dmi/id/product_name", " Laptop 13 \n");
  EXPECT_EQ(now.machine(), "Laptop 13");
  write("sys/class/dmi/id/product_name", " Laptop 14 \n");  // as long, and at once
  EXPECT_EQ(now.machine(), "Laptop 14");
  write("sys/class/dmi/id/product_name", "\n");
  EXPECT_EQ(now.machine(), "Board 4 B");

  EXPECT_EQ(now.name(), kernel.nodename);
  write("etc/machine-info", "# machine\nICON_NAME=x\nPRETTY_HOSTNAME=\"Ada's \\\"till\\\"\"\n");
  EXPECT_EQ(now.name(), "Ada's \"till\"");
  write("etc/machine-info", "PRETTY_HOSTNAME=\n");
  EXPECT_EQ(now.name(), kernel.nodename);

  EXPECT_EQ(now.systemVersion(), kernel.release);
  write("usr/lib/os-release", "VERSION_ID='11'\n");
  EXPECT_EQ(now.systemVersion(), "11");
  write("etc/os-release", "ID=debian\nX_VERSION_ID=1\nVERSION_ID=\"12\"\nVERSION=\"12 (b)\"\n");
  EXPECT_EQ(now.systemVersion(), "12");
  std::filesystem::remove(root_ / "etc/os-release");
  EXPECT_EQ(now.systemVersion(), "11");
  // A file from long ago, which need not be read again, makes room for another.
  std::filesystem::create_symlink("/etc/os-release", root_ / "etc/os-release");
  EXPECT_EQ(now.systemVersion(), ZLVLinuxDevice({}).systemVersion());
  std::filesystem::remove(root_ / "etc/os-release");
  EXPECT_EQ(now.systemVersion(), "11");
  write("etc/os-release", "VERSION_ID=later\n");
  EXPECT_EQ(now.systemVersion(), "later");

  EXPECT_EQ(now.mainScreenSize(), std::nullopt);
  EXPECT_EQ(now.bundleDisplayName(), "Shop");
  EXPECT_TRUE(now.preferredLocalizations().empty());
}

TEST_F(Device, IdentifiesTheApplicationWithoutTheMachine) {
  EXPECT_EQ(device().identifierForVendor(), std::nullopt);
  write("etc/machine-id", "uninitialized\n");
  EXPECT_EQ(device().identifierForVendor(), std::nullopt);
  write("etc/machine-id", "6ba7b8109dad11d180b400c04fd430c8\n");
  // The name-based UUID that RFC 4122's namespace for domain names gives "www.example.com".
  EXPECT_EQ(device("www.example.com").identifierForVendor(),
            "2ED6657D-E927-568B-95E1-2665A8AEA6A2");
  EXPECT_NE(device("other").identifierForVendor(), device().identifierForVendor());
}

TEST(Languages, ComeFromTheEnvironment) {
  struct Case {
    const char *language, *all, *messages, *lang;
    std::vector<std::string> expected;
  };
  const Case cases[] = {
      {"", "", "", "", {}},
      {"de:fr", "C.UTF-8", "de_DE", "de_DE", {}},
      {"", "POSIX", "", "de_DE", {}},
      {"", "", "", "pt_BR.UTF-8@latin", {"pt_BR"}},
      {"", "", "en_US.UTF-8", "de_DE", {"en_US"}},
      {"", "es_ES", "en_US.UTF-8", "de_DE", {"es_ES"}},
      {"gsw:de_CH::C:en", "", "", "de_CH.UTF-8", {"gsw", "de_CH", "en"}},
  };
  for (const auto& item : cases) {
    setenv("LANGUAGE", item.language, 1);
    setenv("LC_ALL", item.all, 1);
    setenv("LC_MESSAGES", item.messages, 1);
    setenv("LANG", item.lang, 1);
    EXPECT_EQ(ZLVLinuxDevice({}).preferredLanguages(), item.expected)
        << item.language << '|' << item.all << '|' << item.messages << '|' << item.lang;
  }
}

TEST(Threads, TellWhoIsAtWork) {
  std::promise<void> end;
  std::thread waiting([ended = end.get_future()] { ended.wait(); });
  // The waiting thread and this one are seen once each has come to what it does; a sanitizer may
  // have threads of its own.
  const auto isIdle = [](const auto& thread) { return thread->isIdle && thread->cpuUsage == 0; };
  const auto isBusy = [](const auto& thread) { return !thread->isIdle && thread->cpuUsage > 0; };
  for (ZLVDevice::Threads threads;
       std::ranges::none_of(threads, isIdle) || std::ranges::none_of(threads, isBusy);) {
    threads = ZLVLinuxDevice({}).threads().value();
    EXPECT_GE(threads.size(), 2U);
    ASSERT_TRUE(std::ranges::all_of(
        threads, [](const auto& thread) { return thread.has_value() && thread->cpuUsage >= 0; }));
  }
  end.set_value();
  waiting.join();
}

}  // namespace
