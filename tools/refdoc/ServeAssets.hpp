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
header.top form { position: relative; }
#suggestions { position: absolute; top: 100%; left: 0; right: 0; z-index: 10; margin: .2rem 0 0; padding: .2rem 0; list-style: none; max-height: 24rem; overflow-y: auto; background: var(--field); border: 1px solid var(--field-line); border-radius: 4px; box-shadow: 0 4px 14px rgba(0, 0, 0, .18); }
#suggestions li > * { display: block; padding: .25rem .6rem; color: var(--ink); }
#suggestions li.active { background: var(--target); }
#suggestions .name { font-family: ui-monospace, "DejaVu Sans Mono", Menlo, Consolas, monospace; font-weight: 600; }
#suggestions .detail { display: block; font-size: .82rem; color: var(--muted); white-space: nowrap; overflow: hidden; text-overflow: ellipsis; }
mark { background: transparent; color: inherit; text-decoration: underline; text-decoration-thickness: 2px; text-decoration-color: var(--accent); }
.error { border: 1px solid var(--bad-line); background: var(--bad-bg); padding: .6rem 1rem; border-radius: 4px; }
)css";

// Search as the user types, in the header's box on every view: the best hits from /api/search
// appear under the box; the arrow keys move through them, Enter opens one (or, with none
// chosen, the search view), Escape closes them, and "/" anywhere else puts the focus in the box.
// On the search view the result list follows the text too, and the address keeps the text, so
// the view can be linked and the back button returns to it. Without script the form works as it
// is. Texts from the data are only ever set as text, never as markup.
inline constexpr const char* kSearchScript = R"js('use strict';
(function () {
  const box = document.getElementById('q');
  if (!box) return;
  const form = box.form;
  const lang = form.elements.lang.value;
  const results = document.getElementById('results');
  const list = document.createElement('ul');
  list.id = 'suggestions';
  list.setAttribute('role', 'listbox');
  list.setAttribute('aria-label', 'Matches');
  list.hidden = true;
  form.appendChild(list);
  box.setAttribute('role', 'combobox');
  box.setAttribute('aria-controls', list.id);
  box.setAttribute('aria-autocomplete', 'list');
  box.setAttribute('aria-expanded', 'false');
  let hits = [];
  let active = -1;
  let timer = 0;
  let latest = 0;

  if (results) {
    box.focus();
    box.setSelectionRange(box.value.length, box.value.length);
  }

  function close() {
    list.hidden = true;
    box.setAttribute('aria-expanded', 'false');
    box.removeAttribute('aria-activedescendant');
    active = -1;
  }

  function choose(index) {
    const items = list.children;
    if (active >= 0 && items[active]) {
      items[active].classList.remove('active');
      items[active].setAttribute('aria-selected', 'false');
    }
    active = index;
    if (active >= 0 && items[active]) {
      items[active].classList.add('active');
      items[active].setAttribute('aria-selected', 'true');
      box.setAttribute('aria-activedescendant', items[active].id);
      items[active].scrollIntoView({ block: 'nearest' });
    } else {
      box.removeAttribute('aria-activedescendant');
    }
  }

  // The name with its matched runs (UTF-16 offsets, as JavaScript counts) in <mark>.
  function markedName(hit) {
    const name = document.createElement('span');
    name.className = 'name';
    let at = 0;
    for (const [begin, length] of hit.ranges) {
      name.append(hit.name.slice(at, begin));
      const mark = document.createElement('mark');
      mark.textContent = hit.name.slice(begin, begin + length);
      name.append(mark);
      at = begin + length;
    }
    name.append(hit.name.slice(at));
    return name;
  }

  function show(found) {
    hits = found;
    active = -1;
    list.replaceChildren();
    found.forEach(function (hit, i) {
      const item = document.createElement('li');
      item.id = 'suggestion-' + i;
      item.setAttribute('role', 'option');
      item.setAttribute('aria-selected', 'false');
      const link = document.createElement(hit.url ? 'a' : 'span');
      if (hit.url) link.href = hit.url;
      link.tabIndex = -1;
      link.append(markedName(hit));
      if (hit.deprecated) {
        const tag = document.createElement('span');
        tag.className = 'tag deprecated';
        tag.textContent = 'deprecated';
        link.append(tag);
      }
      const detail = document.createElement('span');
      detail.className = 'detail';
      detail.textContent = hit.purpose + ' \u00b7 ' + hit.productName;
      link.append(detail);
      item.append(link);
      item.addEventListener('mousemove', function () { if (active !== i) choose(i); });
      list.append(item);
    });
    list.hidden = found.length === 0;
    box.setAttribute('aria-expanded', found.length ? 'true' : 'false');
  }

  async function update() {
    const text = box.value.trim();
    const ticket = ++latest;
    if (!text) {
      show([]);
      return;
    }
    const query = 'q=' + encodeURIComponent(text) + '&lang=' + encodeURIComponent(lang);
    const response = await fetch('/api/search?limit=10&' + query);
    if (ticket !== latest || !response.ok) return;
    const found = await response.json();
    if (ticket !== latest) return;
    show(found);
    if (results) {
      const url = '/search?' + query;
      const page = new DOMParser().parseFromString(await (await fetch(url)).text(), 'text/html');
      const fresh = page.getElementById('results');
      if (ticket !== latest || !fresh) return;
      results.replaceChildren(...fresh.childNodes);
      history.replaceState(null, '', url);
    }
  }

  box.addEventListener('input', function () {
    clearTimeout(timer);
    timer = setTimeout(update, 120);
  });
  box.addEventListener('keydown', function (event) {
    if (event.key === 'ArrowDown' || event.key === 'ArrowUp') {
      if (list.hidden) return;
      event.preventDefault();
      const next = active + (event.key === 'ArrowDown' ? 1 : -1);
      choose(next >= hits.length ? 0 : next < 0 ? hits.length - 1 : next);
    } else if (event.key === 'Enter') {
      if (active >= 0 && hits[active] && hits[active].url) {
        event.preventDefault();
        location.href = hits[active].url;
      }
    } else if (event.key === 'Escape') {
      close();
    }
  });
  box.addEventListener('blur', function () { setTimeout(close, 150); });
  box.addEventListener('focus', function () {
    if (!list.children.length) return;
    list.hidden = false;
    box.setAttribute('aria-expanded', 'true');
  });
  document.addEventListener('keydown', function (event) {
    const target = event.target;
    if (event.key !== '/' || event.ctrlKey || event.metaKey || event.altKey) return;
    if (target.isContentEditable || /^(INPUT|TEXTAREA|SELECT)$/.test(target.tagName)) return;
    event.preventDefault();
    box.focus();
    box.select();
  });
})();
)js";

} // namespace refdoc::tool::assets
