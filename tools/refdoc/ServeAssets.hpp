#pragma once

// The two static files of `refdoc serve`, compiled in: nothing is fetched from the network and
// nothing is read from disk for them.

namespace refdoc::tool::assets {

inline constexpr const char* kStyle = R"css(
:root {
  color-scheme: light dark;
  --ink: #1d232b; --muted: #5b6673; --line: #d9dee4; --accent: #0b57a4; --bad: #a4260b; --warn: #8a5a00;
  --page: #fff; --panel: #f6f8fa; --field: #fff; --field-line: #b8c0c9; --bad-bg: #fff6f3; --bad-line: #e8b4a6;
  --target: #fff4c2;
}
@media (prefers-color-scheme: dark) {
  :root {
    --ink: #e3e7ec; --muted: #9aa5b1; --line: #323a44; --accent: #7db4f0; --bad: #f08c74; --warn: #e6b450;
    --page: #14181d; --panel: #1c2128; --field: #0f1317; --field-line: #46505c; --bad-bg: #2b1a16; --bad-line: #6b3a2e;
    --target: #3a3416;
  }
}
* { box-sizing: border-box; }
body { margin: 0; font: 15px/1.5 system-ui, -apple-system, "Segoe UI", Roboto, "Noto Sans", "Noto Sans CJK JP", sans-serif; color: var(--ink); background: var(--page); }
a { color: var(--accent); text-decoration: none; }
a:hover, a:focus { text-decoration: underline; }
header.top { display: flex; flex-wrap: wrap; align-items: center; gap: .5rem 1.25rem; padding: .6rem 1.5rem; border-bottom: 1px solid var(--line); background: var(--panel); }
header.top .brand { font-weight: 700; color: var(--ink); font-size: 1.05rem; }
header.top form { display: flex; gap: .4rem; flex: 1 1 18rem; max-width: 32rem; }
header.top input[type=search] { flex: 1; padding: .35rem .6rem; border: 1px solid var(--field-line); border-radius: 4px; font: inherit; color: var(--ink); background: var(--field); }
header.top button { padding: .35rem .8rem; border: 1px solid var(--field-line); border-radius: 4px; background: var(--field); color: var(--ink); font: inherit; cursor: pointer; }
nav.langs a, nav.langs strong { margin-right: .4rem; }
.note { margin: 0; padding: .35rem 1.5rem; font-size: .85rem; color: var(--muted); border-bottom: 1px solid var(--line); }
.note.has-problems { color: var(--bad); background: var(--bad-bg); }
main { max-width: 64rem; padding: 1rem 1.5rem 3rem; }
nav.crumbs ol { list-style: none; margin: 0 0 .4rem; padding: 0; display: flex; flex-wrap: wrap; font-size: .88rem; color: var(--muted); }
nav.crumbs li + li::before { content: "›"; margin: 0 .45rem; }
nav.toc { display: flex; flex-wrap: wrap; align-items: baseline; gap: .2rem .9rem; margin: .8rem 0; padding: .4rem .8rem; border: 1px solid var(--line); border-radius: 4px; background: var(--panel); font-size: .9rem; }
nav.toc ul { display: contents; }
nav.toc li { list-style: none; }
h1 { font-size: 1.5rem; margin: .6rem 0 .3rem; }
h2 { font-size: 1.15rem; margin: 1.6rem 0 .4rem; padding-bottom: .2rem; border-bottom: 1px solid var(--line); }
h3 { font-size: 1rem; margin: 1rem 0 .3rem; }
.purpose { font-size: 1.05rem; margin: .2rem 0 .8rem; }
.meta, .muted { color: var(--muted); font-size: .9rem; }
.lacking { border-left: 3px solid var(--warn); padding: .3rem .8rem; background: var(--panel); }
table { border-collapse: collapse; width: 100%; margin: .4rem 0; }
th, td { text-align: left; padding: .3rem .6rem .3rem 0; border-bottom: 1px solid var(--line); vertical-align: top; }
th { font-size: .85rem; color: var(--muted); font-weight: 600; }
td.num { text-align: right; font-variant-numeric: tabular-nums; }
code, pre { font-family: ui-monospace, "DejaVu Sans Mono", Menlo, Consolas, monospace; font-size: .92em; }
pre { background: var(--panel); border: 1px solid var(--line); border-radius: 4px; padding: .5rem .75rem; overflow-x: auto; margin: .3rem 0; }
dl.args dt { margin-top: .6rem; font-weight: 600; }
dl.args dt code { font-weight: 700; }
dl.args dt a.self { color: inherit; }
dl.args dd { margin: 0 0 0 1.5rem; }
dl.args dt:target { background: var(--target); }
.tag { display: inline-block; font-size: .75rem; padding: 0 .4rem; border: 1px solid var(--line); border-radius: 3px; color: var(--muted); margin-left: .3rem; }
.deprecated { color: var(--bad); border-color: var(--bad-line); }
.dropped { color: var(--bad); font-weight: 700; }
.warning { color: var(--warn); font-weight: 700; }
.count { color: var(--muted); font-weight: 400; }
ul.plain { padding-left: 1.2rem; }
.reason { font-family: ui-monospace, "DejaVu Sans Mono", monospace; font-size: .88rem; white-space: pre-wrap; }
.error { border: 1px solid var(--bad-line); background: var(--bad-bg); padding: .6rem 1rem; border-radius: 4px; }
)css";

// Search as the user types: fetches the results page for the box's text and shows its result
// list; without script the form works as it is.
inline constexpr const char* kSearchScript = R"js('use strict';
(function () {
  const box = document.getElementById('q');
  const results = document.getElementById('results');
  if (!box || !results) return;
  // On the results page the box keeps the focus, the caret after the text.
  box.focus();
  box.setSelectionRange(box.value.length, box.value.length);
  let timer = 0;
  let latest = 0;
  box.addEventListener('input', function () {
    clearTimeout(timer);
    timer = setTimeout(async function () {
      const text = box.value.trim();
      if (!text) return;
      const ticket = ++latest;
      const lang = box.form.elements.lang.value;
      const url = '/search?q=' + encodeURIComponent(text) + '&lang=' + encodeURIComponent(lang);
      const response = await fetch(url);
      if (ticket !== latest || !response.ok) return;
      const page = new DOMParser().parseFromString(await response.text(), 'text/html');
      const fresh = page.getElementById('results');
      if (fresh) {
        results.replaceChildren(...fresh.childNodes);
        history.replaceState(null, '', url);
      }
    }, 150);
  });
})();
)js";

} // namespace refdoc::tool::assets
