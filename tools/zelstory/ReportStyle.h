#pragma once

namespace zelstory {

// The page's style sheet. Without "<", ">" and "&": it is read as HTML and as XML.
inline constexpr const char* kReportStyle = R"css(
:root {
  color-scheme: light dark;
  --paper: #fdfcf9; --ink: #1f2328; --faint: #5c6470; --line: #d9d6cd; --accent: #1f5f8b;
  --s1: #c9dcea; --s2: #8fb8d6; --s3: #4c8cb8; --s4: #1f5f8b;
}
@media (prefers-color-scheme: dark) {
  :root {
    --paper: #17191c; --ink: #e4e6e8; --faint: #9aa3ad; --line: #363b42; --accent: #7fb8e0;
    --s1: #24435a; --s2: #33678c; --s3: #4f93c2; --s4: #8cc5ee;
  }
}
* { box-sizing: border-box; }
html { -webkit-text-size-adjust: 100%; }
body { margin: 0 auto; max-width: 62rem; padding: 1.5rem 1rem 4rem; background: var(--paper);
  color: var(--ink); font: 1rem/1.5 system-ui, sans-serif; }
h1 { margin: 0 0 .25rem; font-size: 1.7rem; line-height: 1.2; overflow-wrap: anywhere; }
h2 { margin: 2.5rem 0 .5rem; padding-bottom: .25rem; border-bottom: 1px solid var(--line);
  font-size: 1.2rem; }
a { color: var(--accent); text-underline-offset: .15em; }
a:focus-visible, .wide:focus-visible { outline: 2px solid var(--accent); outline-offset: 2px; }
#summary, .note { margin: 0 0 .75rem; color: var(--faint); }
nav a { display: inline-block; margin-right: 1.25rem; padding: .25rem 0; }
.wide { overflow-x: auto; }
table { width: 100%; border-collapse: collapse; font-size: .92rem; font-variant-numeric: tabular-nums; }
th, td { padding: .3rem .6rem; border-bottom: 1px solid var(--line); text-align: left;
  vertical-align: top; }
caption { text-align: left; }
thead th { color: var(--faint); font-weight: 600; white-space: nowrap; }
th.count, td.count { text-align: right; white-space: nowrap; }
tbody th { font-weight: inherit; white-space: nowrap; }
svg { display: block; font: 12px system-ui, sans-serif; }
svg text { fill: var(--ink); }
svg .label { text-anchor: end; }
svg .tick { text-anchor: middle; fill: var(--faint); }
svg .grid { stroke: var(--line); }
svg .bar, svg .s3 { fill: var(--s3); }
svg .s1 { fill: var(--s1); } svg .s2 { fill: var(--s2); } svg .s4 { fill: var(--s4); }
svg .cell { stroke: var(--s3); stroke-width: .5; } svg a:hover rect { stroke: var(--ink); stroke-width: 1.5; }
td, #page p, #page h3 .text { unicode-bidi: plaintext; }
#screenplay { overflow-wrap: anywhere; }
#page { max-width: 38rem; margin: 0 auto; font-family: "Courier Prime", Courier, "Courier New",
  monospace; line-height: 1.35; }
#page p, #page h3 { margin: 1em 0 0; white-space: pre-line; }
#page h3, #page .heading, #page .shot, #page .transition { text-transform: uppercase; font-size: 1em; }
#page h3 { display: flex; gap: 1.25em; margin-top: 2em; font-weight: 700; scroll-margin-top: 1rem; }
#page h3 .text { flex: 1; }
#page h3 .number { color: var(--faint); font-weight: 400; }
#page h3:target { background: var(--s1); outline: .3em solid var(--s1); }
#page .character { margin-left: 36%; }
#page .dialog, #page .parenthetical { margin-top: 0; }
#page .dialog { margin-left: 16%; margin-right: 24%; }
#page .parenthetical { margin-left: 26%; margin-right: 32%; }
#page .transition { text-align: right; }
@media (max-width: 40rem) {
  body { padding: 1rem .75rem 3rem; }
  table { font-size: .85rem; } th, td { padding: .3rem .4rem; }
  #page { font-size: .88rem; } #page h3 { gap: .75em; }
  #page .character { margin-left: 28%; }
  #page .dialog { margin-left: 10%; margin-right: 8%; }
  #page .parenthetical { margin-left: 18%; margin-right: 14%; }
}
@media print {
  :root { --paper: #fff; --ink: #000; --faint: #444; --line: #bbb; --accent: #000;
    --s1: #ddd; --s2: #aaa; --s3: #777; --s4: #333; }
  body { max-width: none; padding: 0; font-size: 10pt; print-color-adjust: exact; }
  nav { display: none; } a { text-decoration: none; } .wide { overflow: visible; }
  svg { max-width: 100%; height: auto; } thead { display: table-header-group; } tr { break-inside: avoid; }
  h2, .note { break-after: avoid; } #speakers, #lengths { break-inside: avoid; }
  #screenplay { break-before: page; } #page { font-size: 11pt; }
  #page h3, #page .character, #page .parenthetical { break-after: avoid; }
  #page p { orphans: 2; widows: 2; }
}
)css";

}  // namespace zelstory
