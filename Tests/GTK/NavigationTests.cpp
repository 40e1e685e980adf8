// Where a page can lead: what stays in the view, what goes to another application, what nowhere.

#include <map>

#include <gtest/gtest.h>

#include "Tests/GTK/Host.h"
#include "Tests/Support/RawServer.h"

namespace {

/// A page with something to try, and a link that certainly leads out of the view: once that has
/// done so, whatever was tried before it in the same page has been decided, too.
struct Attempt {
  const char* name;
  /// In the page; it has a place of its own at the top to be clicked on.
  std::string content;
  /// What reaches the URL opener before the control link does.
  std::vector<std::string> openedURLs;
};

constexpr const char* control = "app://control";
const std::string frame = "<iframe style='width: 100%; height: 200px; border: 0' ";

const std::map<std::string, std::string> pages = {
    {"/link", "<a id=try href=app://link>link</a>"},
    {"/link-in-link", frame + "id=try src=/link></iframe>"},
    {"/timer",
     "<script>setTimeout(() => { location = 'app://timer'; parent.tried = true; })</script>"},
    {"/redirect-in-frame", frame + "src=/redirect></iframe>"},
    {"/popup", "<p id=popup>popup</p>"},
};

const Attempt attempts[] = {
    {"a link", "<a id=try href=app://link>link</a>", {"app://link"}},
    {"a link of awkward text",
     "<a id=try href='app://link?a=|\"é'>link</a>",
     {"app://link?a=%7C%22%C3%A9"}},
    {"an intent",
     "<a id=try href='intent://scan/#Intent;scheme=zxing;end'>link</a>",
     {"intent://scan/#Intent;scheme=zxing;end"}},
    {"a form", "<form action=app://form><button id=try>form</button></form>", {"app://form?"}},
    {"a redirect after a click", "<a id=try href=/redirect>link</a>", {"app://redirected"}},
    {"a script on a click",
     "<p id=try onclick='location = \"app://click\"'>click</p>",
     {"app://click"}},
    {"a timer",
     "<p id=try>click</p><script>setTimeout(() => { location = 'app://timer'; tried = true; "
     "})</script>",
     {}},
    {"a new window", "<a id=try target=_blank href=app://link>link</a>", {}},
    {"a frame's source", frame + "id=try src=app://frame onload='tried = true'></iframe>", {}},
    {"a link in a frame", frame + "id=try src=/link></iframe>", {}},
    {"a link in a frame in a frame", frame + "id=try src=/link-in-link></iframe>", {}},
    {"a link in a frame in a frame without scripts",
     frame + "id=try sandbox src=/link-in-link></iframe>",
     {}},
    {"a link in an inline frame",
     frame + "id=try srcdoc='<a href=app://link>link</a>'></iframe>",
     {}},
    {"a link in a frame of the page's making",
     "<div id=try></div><script>const inner = document.createElement('iframe');"
     "inner.height = 90;"
     "document.getElementById('try').append(inner);"
     "inner.contentDocument.write('<a href=app://link>link</a>');"
     "inner.contentDocument.close()</script>",
     {}},
    {"a timer in a frame", frame + "id=try src=/timer></iframe>", {}},
    {"a redirect in a frame", frame + "id=try src=/redirect onload='tried = true'></iframe>", {}},
    {"a redirect in a frame in a frame",
     frame + "id=try src=/redirect-in-frame onload='tried = true'></iframe>",
     {}},
    {"a redirect in an object",
     "<object id=try data=/redirect onerror='tried = true' onload='tried = true'></object>",
     {}},
    {"a file", "<a id=try href=file:///etc/passwd>link</a>", {}},
    {"a file by script", "<p id=try onclick='location = \"file:///etc/passwd\"'>click</p>", {}},
    {"data", "<a id=try href='data:text/html,<p>data'>link</a>", {}},
    {"a script", "<a id=try href='javascript:void(tried = true)'>link</a>", {}},
    {"a blob", "<p id=try onclick='location = URL.createObjectURL(new Blob([1]))'>click</p>", {}},
    {"a download", "<a id=try download href=/file>link</a>", {}},
    {"a file to be saved", "<a id=try href=/file>link</a>", {}},
    {"an empty window", "<p id=try onclick='window.open()'>click</p>", {}},
    {"dialogs, print, permissions",
     "<p id=try onclick='print(); navigator.geolocation.getCurrentPosition(() => {});"
     "Notification.requestPermission(); navigator.clipboard.readText().catch(() => {})'>click</p>",
     {}},
};

RawServer::Reply answer(const std::string& request, const std::string& content) {
  const std::string html = "Content-Type: text/html; charset=utf-8\r\n";
  const auto start = request.find('/');
  const auto path = request.substr(start, request.find_first_of(" ?", start) - start);
  if (path == "/redirect") return {RawServer::redirect(302, "app://redirected")};
  if (path == "/file") {
    return {RawServer::response("content", "200 OK",
                                html + "Content-Disposition: attachment; filename=saved\r\n")};
  }
  const auto known = pages.find(path);
  return {RawServer::response(
      "<!doctype html><style>#try, a { display: block; width: 200px; height: 100px }</style>"
      "<script>var tried = false</script>" +
          (known == pages.end() ? content + "<a id=control href=" + control + ">control</a>"
                                : known->second),
      "200 OK", html)};
}

TEST(Navigation, KeepsToTheView) {
  Host host;
  std::string content;
  const RawServer server([&](const std::string& request) { return answer(request, content); });
  host.run([&] {
    host.present(server.url("/start"));
    host.clickElement("#control");
    ASSERT_TRUE(waitFor([&] { return host.openedURLs().size() == 1; }));
    for (std::size_t i = 0; i < std::size(attempts); ++i) {
      const auto& attempt = attempts[i];
      SCOPED_TRACE(attempt.name);
      content = attempt.content;
      const auto url = server.url("/?" + std::to_string(i));
      host.evaluate("location = '" + url + "'");
      ASSERT_TRUE(waitFor([&] {
        return host.evaluate("document.readyState + location.href") == "complete" + url;
      }));
      const auto seen = host.openedURLs().size();

      host.clickElement("#try");
      const bool tells =
          content.find("tried = true") != std::string::npos || content.find("/timer") != std::string::npos;
      EXPECT_TRUE(!tells || waitFor([&] { return host.evaluate("tried") == "true"; }));
      const auto& expected = attempt.openedURLs;
      EXPECT_TRUE(waitFor([&] { return host.openedURLs().size() >= seen + expected.size(); }));
      host.clickElement("#control");
      ASSERT_TRUE(waitFor(
          [&] { return host.openedURLs().size() > seen && host.openedURLs().back() == control; }));
      const std::vector<std::string> opened(
          host.openedURLs().begin() + static_cast<std::ptrdiff_t>(seen),
          host.openedURLs().end() - 1);
      EXPECT_EQ(opened, expected);
      EXPECT_EQ(host.evaluate("location.href"), url);
      EXPECT_EQ(g_list_model_get_n_items(gtk_window_get_toplevels()), 1U);
    }
  });
}

TEST(Navigation, OpensNewWindowsInTheSameView) {
  Host host;
  const RawServer server([](const std::string& request) {
    return answer(request,
                  "<a id=link target=_blank href=/popup>link</a>"
                  "<p id=script onclick='window.open(\"/popup\")'>script</p>"
                  "<script>window.open('/popup')</script>"
                  "<form method=post action=/popup target=_blank><input type=hidden name=a value=b>"
                  "<button>form</button></form>");
  });
  host.run([&] {
    for (const char* element : {"#link", "#script", "button"}) {
      SCOPED_TRACE(element);
      host.present(server.url());
      host.clickElement(element);
      host.clickElement("#popup");
      EXPECT_EQ(g_list_model_get_n_items(gtk_window_get_toplevels()), 1U);
      pressKeys("Escape");
      ASSERT_TRUE(host.waitUntilClosed());
    }
    EXPECT_NE(server.requests().back().find("\r\n\r\na=b"), std::string::npos);
  });
}

TEST(Navigation, TellsOfThePageThatLedOutBeforeItCame) {
  Host host;
  const RawServer server([](const std::string& request) { return answer(request, ""); });
  host.run([&] {
    host.present(server.url("/redirect"));
    ASSERT_TRUE(waitFor([&] { return host.find("Continue in the other app") != nullptr; }));
    EXPECT_EQ(host.openedURLs(), std::vector<std::string>{"app://redirected"});
    host.click("Close");
    EXPECT_TRUE(host.waitUntilClosed());
  });
}

}  // namespace
