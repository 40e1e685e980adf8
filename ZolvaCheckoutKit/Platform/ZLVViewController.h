#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <ZolvaCheckoutKit/Platform/ZLVOnce.h>
#include <ZolvaCheckoutKit/ZLVExport.h>

/// How a presented view controller covers the one below.
enum class ZLVModalPresentationStyle : std::int64_t {
  FullScreen = 0,  ///< All of it.
  PageSheet = 1    ///< Part of it, where the platform does that.
};

/// The classes that the library tells from their subclasses.
enum class ZLVExactClass : std::uint8_t {
  Other,                 ///< Any other class, a subclass of the two included.
  NavigationController,  ///< `ZLVNavigationController` itself.
  WebViewController      ///< The library's own page.
};

/// Holds which of these classes an object is of. To be a virtual base: such a base is made by the
/// object's own class alone, so a subclass that says nothing is of none of them. That holds without
/// run-time type information, which a host may have turned off.
struct ZLV_EXPORT ZLVExactClassBase {
  /// Of no class that counts.
  ZLVExactClassBase() noexcept = default;
  /// Of the class.
  explicit ZLVExactClassBase(ZLVExactClass name) noexcept : ownClass(name) {}

  /// The class of the whole object.
  const ZLVExactClass ownClass = ZLVExactClass::Other;
};

/// A node in the tree of what the application shows. Owns its children and what it presents.
///
/// Used on the main thread only, and through `std::shared_ptr`. A host wraps its window or page in
/// one (see its platform's header) and passes it to the operations that may show a page.
class ZLV_EXPORT ZLVViewController : public std::enable_shared_from_this<ZLVViewController> {
 public:
  ZLVViewController() = default;
  ZLVViewController(const ZLVViewController&) = delete;
  ZLVViewController& operator=(const ZLVViewController&) = delete;
  /// Releases what it presents, which then leaves the screen too.
  virtual ~ZLVViewController();

  /// What this controller presents, or a null pointer.
  [[nodiscard]] const std::shared_ptr<ZLVViewController>& presentedViewController() const noexcept {
    return presented_;
  }
  /// Who presents this controller, or a null pointer.
  [[nodiscard]] ZLVViewController* presentingViewController() const noexcept { return presenting_; }
  /// The container that this controller is a child of, or a null pointer.
  [[nodiscard]] ZLVViewController* parentViewController() const noexcept { return parent_; }
  /// The controllers that this one contains, in stack order where there is a stack.
  [[nodiscard]] const std::vector<std::shared_ptr<ZLVViewController>>& childViewControllers()
      const noexcept {
    return children_;
  }

  /// The class of this controller, or `Other` for any other class, subclasses included.
  [[nodiscard]] virtual ZLVExactClass exactClass() const noexcept { return ZLVExactClass::Other; }

  /// How it covers what presents it; to be set before it is presented.
  [[nodiscard]] ZLVModalPresentationStyle modalPresentationStyle() const noexcept { return style_; }
  void setModalPresentationStyle(ZLVModalPresentationStyle style) noexcept { style_ = style; }

  /// Shows `controller` over this one and keeps it until it is dismissed, then calls `completion`.
  /// Does nothing, and lets `controller` go, when something is presented here already or
  /// `controller` is presented elsewhere.
  void presentViewController(std::shared_ptr<ZLVViewController> controller, bool animated,
                             ZLVOnce<void()> completion = {});

  /// Dismisses what this controller presents, or, when it presents nothing, this controller itself,
  /// and lets it go. That may be its end before this returns; `completion` runs after it.
  void dismissViewControllerAnimated(bool animated, ZLVOnce<void()> completion = {});

 protected:
  /// Runs once, before the controller is shown for the first time.
  virtual void viewDidLoad() {}
  /// Puts the controller on the screen; `presentingViewController` is set.
  virtual void viewWillAppear(bool /*animated*/) {}
  /// Takes it off the screen again.
  virtual void viewWillDisappear(bool /*animated*/) {}

  /// Makes `child` the last child of this controller.
  void addChildViewController(std::shared_ptr<ZLVViewController> child);
  /// Removes the last child and returns it; a null pointer when there is none.
  std::shared_ptr<ZLVViewController> removeLastChildViewController();

 private:
  std::shared_ptr<ZLVViewController> presented_;
  std::vector<std::shared_ptr<ZLVViewController>> children_;
  ZLVViewController* presenting_ = nullptr;
  ZLVViewController* parent_ = nullptr;
  ZLVModalPresentationStyle style_ = ZLVModalPresentationStyle::FullScreen;
  bool isViewLoaded_ = false;
};

/// A stack of view controllers of which the last is shown.
class ZLV_EXPORT ZLVNavigationController : public ZLVViewController,
                                           private virtual ZLVExactClassBase {
 public:
  ZLVNavigationController() : ZLVExactClassBase(ZLVExactClass::NavigationController) {}

  [[nodiscard]] ZLVExactClass exactClass() const noexcept override;

  /// Puts `controller` on top of the stack.
  void pushViewController(std::shared_ptr<ZLVViewController> controller);
  /// Removes the top of the stack and returns it; a null pointer when the stack is empty.
  std::shared_ptr<ZLVViewController> popViewController();
};
