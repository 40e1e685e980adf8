#include <Sandbox/PageTemplates.h>

namespace {

std::string escaped(std::string_view text) {
  std::string html;
  for (const char c : text) {
    switch (c) {
      case '&':
        html += "&amp;";
        break;
      case '<':
        html += "&lt;";
        break;
      case '>':
        html += "&gt;";
        break;
      case '"':
        html += "&quot;";
        break;
      case '\'':
        html += "&#39;";
        break;
      default:
        html += c;
    }
  }
  return html;
}

}  // namespace

std::string ZLVFillTemplate(
    std::string_view text,
    std::initializer_list<std::pair<std::string_view, std::string_view>> values) {
  std::string filled;
  for (auto open = text.find("{{"); open != std::string_view::npos; open = text.find("{{")) {
    filled += text.substr(0, open);
    text.remove_prefix(open + 2);
    const bool isHTML = text.starts_with('{');
    if (isHTML) text.remove_prefix(1);
    const auto name = text.substr(0, text.find("}}"));
    for (const auto& [key, value] : values) {
      if (key == name) filled += isHTML ? std::string(value) : escaped(value);
    }
    text.remove_prefix(name.size() + (isHTML ? 3 : 2));
  }
  return filled += text;
}

namespace ZLVPageTemplates {

const std::string_view Page = R"html(<!doctype html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<meta name="color-scheme" content="light dark">
<title>{{title}} · Zolva Sandbox</title>
<link rel="icon" href="data:image/svg+xml,%3Csvg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 32 32'%3E%3Crect width='32' height='32' rx='9' fill='%23533ce6'/%3E%3Cpath d='M10 10h12L10 22h12' fill='none' stroke='%23fff' stroke-width='3.2' stroke-linecap='round' stroke-linejoin='round'/%3E%3C/svg%3E">
<style>
:root {
  --page: #f2f3f8; --card: #fff; --ink: #171a2b; --quiet: #5f6580; --line: #e4e6f0;
  --brand: #533ce6; --brand-strong: #4029c9; --accent: #4f38dd; --good: #137a4b; --good-tint: #e2f5eb;
  --wait: #8a5a00; --wait-tint: #fdf1d7; --bad: #b3261e; --bad-tint: #fce9e7;
  --shadow: 0 1px 2px #1a1d3a0f, 0 12px 40px #1a1d3a14;
}
@media (prefers-color-scheme: dark) {
  :root {
    --page: #0e1018; --card: #181b27; --ink: #eef0fa; --quiet: #9ba2bd; --line: #2a2e40;
    --brand: #6d58f5; --brand-strong: #7f6cff; --accent: #a99cff; --good: #6fdcaa; --good-tint: #14342a;
    --wait: #f3c565; --wait-tint: #3a2f14; --bad: #ff9a92; --bad-tint: #40201f;
    --shadow: 0 1px 2px #0006, 0 12px 40px #0006;
  }
}
* { box-sizing: border-box; }
body {
  margin: 0; min-height: 100vh; display: flex; flex-direction: column; align-items: center;
  padding: 20px 16px; gap: 20px; background: var(--page); color: var(--ink);
  font: 16px/1.5 system-ui, -apple-system, "Segoe UI", Roboto, "Helvetica Neue", sans-serif;
  -webkit-text-size-adjust: 100%;
}
.brand { display: flex; align-items: center; gap: 10px; font-weight: 650; font-size: 18px; }
.brand svg { width: 32px; height: 32px; display: block; }
.brand path { stroke: #fff; stroke-width: 3.2; stroke-linecap: round; stroke-linejoin: round; fill: none; }
.brand rect { fill: var(--brand); }
main { width: 100%; }
.sheet { max-width: 420px; margin: auto 0; }
.card {
  background: var(--card); border: 1px solid var(--line); border-radius: 20px;
  box-shadow: var(--shadow); padding: 24px;
}
h1 { margin: 0; font-size: 22px; line-height: 1.25; font-weight: 650; letter-spacing: -.01em; text-wrap: balance; }
.amount { font-size: 38px; font-variant-numeric: tabular-nums; letter-spacing: -.02em; }
.eyebrow { margin: 0 0 6px; color: var(--accent); font-size: 14px; font-weight: 600; }
.lead { margin: 8px 0 0; color: var(--quiet); }
dl { margin: 20px 0; border-block: 1px solid var(--line); }
dl div { display: flex; justify-content: space-between; gap: 16px; padding: 11px 0; }
dl div + div { border-top: 1px solid var(--line); }
dt { color: var(--quiet); flex: none; }
dd { margin: 0; text-align: right; font-weight: 550; overflow-wrap: anywhere; min-width: 0; }
form { display: grid; gap: 10px; margin: 0; }
button {
  font: inherit; font-weight: 600; min-height: 50px; border-radius: 14px; border: 1px solid transparent;
  cursor: pointer; color: var(--ink); background: transparent;
}
button[value="confirm"] { background: var(--brand); color: #fff; }
button[value="confirm"]:hover { background: var(--brand-strong); }
button[value="cancel"] { border-color: var(--line); }
button[value="cancel"]:hover { background: var(--page); }
:focus-visible { outline: 3px solid var(--brand); outline-offset: 2px; }
.centred { text-align: center; padding: 36px 24px; }
.mark {
  width: 56px; height: 56px; margin: 0 auto 16px; border-radius: 50%; display: grid;
  place-items: center; font-size: 26px; font-weight: 650;
}
footer { color: var(--quiet); font-size: 13px; text-align: center; }
.good { background: var(--good-tint); color: var(--good); }
.wait { background: var(--wait-tint); color: var(--wait); }
.bad { background: var(--bad-tint); color: var(--bad); }
.wide {
  max-width: 760px; flex: 1; display: grid; grid-template-columns: minmax(0, 1fr); gap: 16px;
  align-content: start;
}
.wide .card { padding: 20px; }
.wide h2 { margin: 0; font-size: 17px; font-weight: 650; }
.wide h2 small { color: var(--quiet); font-weight: 500; font-size: 14px; margin-left: 6px; }
.intro { display: flex; flex-wrap: wrap; justify-content: space-between; gap: 8px 24px; align-items: baseline; }
.intro p { margin: 0; color: var(--quiet); }
ul { list-style: none; margin: 8px 0 0; padding: 0; }
li { display: flex; justify-content: space-between; gap: 16px; padding: 12px 0; align-items: center; }
li + li { border-top: 1px solid var(--line); }
li:last-child { padding-bottom: 0; }
.what { min-width: 0; font-weight: 550; overflow-wrap: anywhere; }
.side { display: flex; flex-direction: column; gap: 4px 14px; align-items: end; flex: none; }
.what small { display: block; color: var(--quiet); font-weight: 400; font-size: 13px; }
.figure:empty, .pill:empty { display: none; }
.pill { border-radius: 99px; padding: 2px 10px; font-size: 13px; font-weight: 600; white-space: nowrap; }
.figure { font-variant-numeric: tabular-nums; white-space: nowrap; color: var(--quiet); }
.none { color: var(--quiet); margin: 8px 0 0; }
a { color: var(--accent); font-weight: 600; text-underline-offset: 3px; }
code { font: 13px/1.6 ui-monospace, "SF Mono", Menlo, Consolas, monospace; }
pre { margin: 12px 0 0; padding: 14px; border-radius: 12px; background: var(--page); overflow-x: auto; }
@media (min-width: 640px) {
  body { padding: 40px 24px; gap: 28px; }
  .sheet .card { padding: 32px; }
  .side { flex-direction: row; align-items: center; }
}
</style>
</head>
<body>
<header class="brand"><svg viewBox="0 0 32 32" aria-hidden="true"><rect width="32" height="32" rx="9"/><path d="M10 10h12L10 22h12"/></svg>Zolva</header>
{{{content}}}
<footer>Sandbox. No real money moves.</footer>
</body>
</html>
)html";

const std::string_view Form = R"html(<main class="sheet"><div class="card">
<p class="eyebrow">{{eyebrow}}</p>
<h1 class="{{style}}">{{title}}</h1>
<p class="lead">{{lead}}</p>
<dl>{{{facts}}}</dl>
<form method="post" action="{{action}}">
<button name="decision" value="confirm">Confirm</button>
<button name="decision" value="cancel">Cancel</button>
</form>
</div></main>)html";

const std::string_view Fact = "<div><dt>{{name}}</dt><dd>{{value}}</dd></div>";

const std::string_view Message = R"html(<main class="sheet"><div class="card centred">
<div class="mark {{mood}}" aria-hidden="true">{{sign}}</div>
<h1>{{title}}</h1>
<p class="lead">{{lead}}</p>
</div></main>)html";

const std::string_view Overview = R"html(<main class="wide">
<div class="intro"><h1>Sandbox</h1><p><code>{{address}}</code></p></div>
{{{sections}}}
<section class="card"><h2>Make a call go wrong</h2>
<pre><code>curl {{address}}/sandbox/misbehave -H 'Content-Type: application/json' \
  -d '{"path": "/v2/charge", "status": 503, "body": {"status_message": "Down"}}'</code></pre></section>
</main>)html";

const std::string_view OverviewSection =
    R"html(<section class="card"><h2>{{title}}<small>{{count}}</small></h2>
{{{rows}}}</section>
)html";

const std::string_view OverviewRow =
    R"html(<li><span class="what">{{what}}<small>{{detail}}</small></span>
<span class="side"><span class="figure">{{figure}}</span><span class="pill {{mood}}">{{state}}</span>{{{link}}}</span></li>
)html";

}  // namespace ZLVPageTemplates
