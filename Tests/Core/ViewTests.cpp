#include <gtest/gtest.h>

#include <ZolvaCheckoutKit/Platform/ZLVViewController.h>

namespace {

std::string journal;

struct View : ZLVViewController {
  explicit View(std::string letter) : name(std::move(letter)) {}
  void viewDidLoad() override { journal += "load " + name; }
  void viewWillAppear(bool /*animated*/) override { journal += "show " + name; }
  void viewWillDisappear(bool /*animated*/) override {
    journal += "hide " + name;
    if (leaving) leaving();
  }
  const std::string name;
  std::function<void()> leaving;
};

std::string takeJournal() { return std::exchange(journal, {}); }
ZLVOnce<void()> done() {
  return [] { journal += "done, "; };
}

}  // namespace

TEST(Views, ArePresentedOnceAndDismissedFromTheTop) {
  const auto root = std::make_shared<View>("r, ");
  const auto other = std::make_shared<View>("o, ");
  const auto a = std::make_shared<View>("a, ");
  root->presentViewController(a, false, done());
  EXPECT_EQ(takeJournal(), "load a, show a, done, ");
  // Shown already, here and elsewhere; and the presenter is busy.
  other->presentViewController(a, false, done());
  root->presentViewController(a, false, done());
  root->presentViewController(other, false, done());
  EXPECT_EQ(takeJournal(), "");
  EXPECT_EQ(a->presentingViewController(), root.get());

  const auto b = std::make_shared<View>("b, ");
  a->presentViewController(b, false, std::function<void()>());
  b->presentViewController(std::make_shared<View>("c, "), false);
  takeJournal();
  root->dismissViewControllerAnimated(false, done());
  EXPECT_EQ(takeJournal(), "hide c, hide b, hide a, done, ");
  root->dismissViewControllerAnimated(false, std::function<void()>());

  // A second time: it is loaded already. It dismisses itself.
  root->presentViewController(a, false);
  a->dismissViewControllerAnimated(false, done());
  EXPECT_EQ(takeJournal(), "show a, hide a, done, ");
}

TEST(Views, MayDoAsTheyLikeWhileTheyGo) {
  auto root = std::make_shared<View>("r, ");
  const auto a = std::make_shared<View>("a, ");
  const auto b = std::make_shared<View>("b, ");
  const auto fresh = std::make_shared<View>("f, ");
  root->presentViewController(a, false);
  a->presentViewController(b, false);
  // What goes first takes everything else along and presents anew, which then stays.
  b->leaving = [&] {
    root->dismissViewControllerAnimated(false);
    root->presentViewController(fresh, false);
  };
  takeJournal();
  root->dismissViewControllerAnimated(false, done());
  EXPECT_EQ(takeJournal(), "hide b, hide a, load f, show f, done, ");
  EXPECT_EQ(root->presentedViewController(), fresh);

  // The presenter goes, but not what it presented, and that may be presented again.
  const std::weak_ptr<View> gone = root;
  fresh->leaving = [&] { root.reset(); };
  root->dismissViewControllerAnimated(false, done());
  EXPECT_EQ(takeJournal(), "hide f, done, ");
  EXPECT_TRUE(gone.expired());
  auto presenter = std::make_shared<View>("p, ");
  presenter->presentViewController(b, false);
  presenter.reset();
  EXPECT_EQ(b->presentingViewController(), nullptr);
  a->presentViewController(b, false);
  EXPECT_EQ(takeJournal(), "show b, show b, ");

  const auto navigation = std::make_shared<ZLVNavigationController>();
  navigation->pushViewController(a);
  EXPECT_EQ(a->parentViewController(), navigation.get());
  EXPECT_EQ(navigation->popViewController(), a);
  EXPECT_EQ(navigation->popViewController(), nullptr);
  EXPECT_EQ(a->parentViewController(), nullptr);
}
