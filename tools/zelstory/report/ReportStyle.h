#pragma once

namespace zelstory {

// The page's style sheet. It has no "<", ">" and "&", since it is read as HTML and as XML.
inline constexpr const char* kReportStyle = R"css(
:root {
  color-scheme: light dark;
  --paper: #fdfcf9; --ink: #1f2328; --faint: #5c6470; --line: #d9d6cd; --accent: #1f5f8b;
  --s1: #c9dcea; --s2: #8fb8d6; --s3: #4c8cb8; --s4: #1f5f8b;
}
@media (prefers-color-scheme: dark) {
  :root {
    --paper: #17191c; --ink: #e4e6e8; --faint: #9aa3ad; --line: #363b42; --accent: #7fb8e0;
    --s1: #22405a; --s2: #1f5b85; --s3: #2188cf; --s4: #45b8ff;
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
.note, .file, .legend { margin: 0 0 .75rem; color: var(--faint); overflow-wrap: anywhere; }
#summary { display: flex; flex-wrap: wrap; gap: .75rem 2rem; margin: 1rem 0 .75rem; }
#summary dt { color: var(--faint); font-size: .85rem; }
#summary dd { margin: 0; font-size: 1.15rem; font-variant-numeric: tabular-nums; }
nav { display: flex; flex-wrap: wrap; gap: 0 1.25rem; }
nav a { padding: .25rem 0; }
.legend { display: flex; flex-wrap: wrap; gap: .1rem 1.25rem; font-size: .85rem; }
.legend span { display: flex; align-items: center; gap: .4rem; }
.wide { display: flex; position: relative; overflow-x: auto; background:
  linear-gradient(to right, var(--paper) 40%, transparent) left / 2rem 100% no-repeat local,
  linear-gradient(to left, var(--paper) 40%, transparent) right / 2rem 100% no-repeat local,
  linear-gradient(to right, var(--line), transparent) left / .7rem 100% no-repeat scroll,
  linear-gradient(to left, var(--line), transparent) right / .7rem 100% no-repeat scroll; }
table { width: 100%; border-collapse: collapse; font-size: .92rem; font-variant-numeric: tabular-nums; }
th, td { padding: .3rem .6rem; border-bottom: 1px solid var(--line); text-align: left;
  vertical-align: top; max-width: 22rem; overflow-wrap: break-word; }
thead th { color: var(--faint); font-weight: 600; white-space: nowrap; }
th.count, td.count { text-align: right; }
td.duration { white-space: nowrap; }
tbody th { font-weight: inherit; }
tbody th.count, td.first, td.last { max-width: 9em; }
td.guess { color: var(--faint); }
td.ranges { min-width: 14rem; }
svg { display: block; flex: none; font: 12px system-ui, sans-serif; }
svg.labels { position: sticky; left: 0; background: var(--paper); }
svg text { fill: var(--ink); }
svg .label { text-anchor: end; }
svg .tick { text-anchor: middle; fill: var(--faint); }
svg .grid { stroke: var(--line); }
svg .bar, svg .s3 { fill: var(--s3); }
svg .estimated { fill: url(#hatch); stroke: var(--s3); stroke-width: .5; }
svg .s1 { fill: var(--s1); } svg .s2 { fill: var(--s2); } svg .s4 { fill: var(--s4); }
svg .cell.s1 { stroke: var(--s2); stroke-width: .5; } svg a:hover rect { stroke: var(--ink); stroke-width: 1.5; }
h1, td, tbody th, #page p, #page h3 .text { unicode-bidi: plaintext; }
#screenplay { overflow-wrap: anywhere; }
#page { max-width: 38rem; margin: 0 auto; font-family: "Courier Prime", Courier, "Courier New",
  monospace; line-height: 1.35; }
#page p, #page h3 { margin: 1em 0 0; white-space: pre-line; }
#page h3, #page .heading, #page .shot, #page .transition { text-transform: uppercase; font-size: 1em; }
#page h3 { display: flex; gap: 1.25em; font-weight: 700; scroll-margin-top: 1rem; }
#page article { margin-top: 2em; }
#page h3 .text { flex: 1; }
#page h3 .number { max-width: 30%; color: var(--faint); font-weight: 400; }
#page h3:target { background: var(--s1); outline: .3em solid var(--s1); }
#page .character { margin-left: 36%; }
#page .dialog, #page .parenthetical { margin-top: 0; }
#page .dialog { margin-left: 16%; margin-right: 24%; }
#page .parenthetical { margin-left: 26%; margin-right: 32%; }
#page .transition { text-align: right; }
#page aside { margin: 2em 0; padding: .6em 1em; border: 1px solid var(--line); border-radius: .3em;
  color: var(--faint); font-size: .88em; }
#page aside:first-child { margin-top: 1em; }
#page aside p { margin: .2em 0 0; }
#page aside .label { margin: 0; font: 600 .85em system-ui, sans-serif; }
@media (max-width: 40rem) {
  body { padding: 1rem .75rem 3rem; }
  table, tbody, tr { display: block; }
  td { display: inline; } td.count { display: inline-block; margin-right: .4em; }
  td::after, tbody th::after { content: " "; } td:empty { display: none; }
  thead { position: absolute; width: 1px; height: 1px; overflow: hidden; clip-path: inset(50%); }
  tr { padding: .5rem 0; border-bottom: 1px solid var(--line); }
  th, td { padding: 0; border: 0; overflow-wrap: anywhere; }
  tbody th { display: inline; } tbody th:not(.count) { display: block; font-weight: 600; }
  td.duration { display: inline; } td.duration::before { content: ""; display: block; }
  td.words::before { content: "words\A0"; } td.speeches::before { content: "speeches\A0"; }
  td.first::before { content: "first\A0"; } td.last::before { content: "last\A0"; }
  td.scenes::before { content: "scenes\A0"; } td.extensions::before { content: "extensions\A0"; }
  td.count, td.who, td.ranges, td.extensions { color: var(--faint); }
  td.who:not(:empty), td.ranges, td.extensions:not(:empty) { display: block; }
  #page { font-size: .88rem; } #page h3 { gap: .75em; }
  #page .character { margin-left: 28%; }
  #page .dialog { margin-left: 10%; margin-right: 8%; }
  #page .parenthetical { margin-left: 18%; margin-right: 14%; }
}
@page { margin: 16mm 15mm 20mm;
  @bottom-center { content: counter(page) " / " counter(pages); font: 9pt system-ui, sans-serif; color: #444; } }
@media print {
  :root { color-scheme: light; --paper: #fff; --ink: #000; --faint: #444; --line: #bbb; --accent: #000;
    --s1: #ddd; --s2: #aaa; --s3: #777; --s4: #333; }
  body { max-width: none; padding: 0; font-size: 10pt; print-color-adjust: exact; }
  nav { display: none; } a { text-decoration: none; } .wide { overflow: visible; }
  table { font-size: 8.5pt; } th, td { padding: .2rem .35rem; max-width: 8em; }
  td.location, tbody th:not(.count) { max-width: 14em; } td.who { max-width: 16em; }
  td.ranges { min-width: 0; max-width: 20em; }
  svg { flex: 0 1 auto; min-width: 0; height: auto; } thead { display: table-header-group; } tr { break-inside: avoid; }
  h2, .note, .legend { break-after: avoid; }
  #speakers, #lengths { break-inside: avoid; }
  #scenes, #characters, #screenplay { break-before: page; }
  #scenes h2, #characters h2, #screenplay h2 { margin-top: 0; } #page { font-size: 11pt; }
  #page h3, #page .character, #page .parenthetical { break-after: avoid; }
  #page p { orphans: 2; widows: 2; }
}
)css";

}  // namespace zelstory
