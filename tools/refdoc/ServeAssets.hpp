#pragma once

// The two static files of `refdoc serve`, compiled in: nothing is fetched from the network and
// nothing is read from disk for them.

namespace refdoc::tool::assets {

inline constexpr const char* kStyle = R"css(
:root { color-scheme: light; --ink: #1d232b; --muted: #5b6673; --line: #d9dee4; --accent: #0b57a4; --bad: #a4260b; --warn: #8a5a00; }
* { box-sizing: border-box; }
body { margin: 0; font: 15px/1.5 system-ui, -apple-system, "Segoe UI", Roboto, "Noto Sans", "Noto Sans CJK JP", sans-serif; color: var(--ink); background: #fff; }
a { color: var(--accent); text-decoration: none; }
a:hover, a:focus { text-decoration: underline; }
header.top { display: flex; flex-wrap: wrap; align-items: center; gap: .5rem 1.25rem; padding: .6rem 1.5rem; border-bottom: 1px solid var(--line); background: #f6f8fa; }
header.top .brand { font-weight: 700; color: var(--ink); font-size: 1.05rem; }
header.top form { display: flex; gap: .4rem; flex: 1 1 18rem; max-width: 32rem; }
header.top input[type=search] { flex: 1; padding: .35rem .6rem; border: 1px solid #b8c0c9; border-radius: 4px; font: inherit; }
header.top button { padding: .35rem .8rem; border: 1px solid #b8c0c9; border-radius: 4px; background: #fff; font: inherit; cursor: pointer; }
nav.langs a, nav.langs strong { margin-right: .4rem; }
.note { margin: 0; padding: .35rem 1.5rem; font-size: .85rem; color: var(--muted); border-bottom: 1px solid var(--line); }
.note.has-problems { color: var(--bad); background: #fff6f3; }
main { max-width: 64rem; padding: 1rem 1.5rem 3rem; }
h1 { font-size: 1.5rem; margin: .6rem 0 .3rem; }
h2 { font-size: 1.15rem; margin: 1.6rem 0 .4rem; padding-bottom: .2rem; border-bottom: 1px solid var(--line); }
h3 { font-size: 1rem; margin: 1rem 0 .3rem; }
.purpose { font-size: 1.05rem; margin: .2rem 0 .8rem; }
.meta, .muted { color: var(--muted); font-size: .9rem; }
table { border-collapse: collapse; width: 100%; margin: .4rem 0; }
th, td { text-align: left; padding: .3rem .6rem .3rem 0; border-bottom: 1px solid var(--line); vertical-align: top; }
th { font-size: .85rem; color: var(--muted); font-weight: 600; }
td.num { text-align: right; font-variant-numeric: tabular-nums; }
code, pre { font-family: ui-monospace, "DejaVu Sans Mono", Menlo, Consolas, monospace; font-size: .92em; }
pre { background: #f6f8fa; border: 1px solid var(--line); border-radius: 4px; padding: .5rem .75rem; overflow-x: auto; margin: .3rem 0; }
dl.args dt { margin-top: .6rem; font-weight: 600; }
dl.args dt code { font-weight: 700; }
dl.args dd { margin: 0 0 0 1.5rem; }
dl.args dt:target { background: #fff4c2; }
.tag { display: inline-block; font-size: .75rem; padding: 0 .4rem; border: 1px solid var(--line); border-radius: 3px; color: var(--muted); margin-left: .3rem; }
.deprecated { color: var(--bad); border-color: #e8b4a6; }
.dropped { color: var(--bad); font-weight: 700; }
.warning { color: var(--warn); font-weight: 700; }
ul.plain { padding-left: 1.2rem; }
.reason { font-family: ui-monospace, "DejaVu Sans Mono", monospace; font-size: .88rem; white-space: pre-wrap; }
.error { border: 1px solid #e8b4a6; background: #fff6f3; padding: .6rem 1rem; border-radius: 4px; }
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
