// How the element looks: its colours are those of the roles, which a page sets as --zr-... on the element.
import {roleName, themeRules} from './theme.js';

const inks = Array.from({length: 27}, (_, i) => `.role-${roleName(i)} { color: var(--role-${roleName(i)}); }`).join('\n');

export const style = `
${themeRules}
:host { display: flex; flex-direction: column; min-height: 240px; height: 640px; font: 13px system-ui, sans-serif;
  background: var(--role-surface); color: var(--role-text); overflow: hidden; }
:host([hidden]) { display: none; }
:host([busy]) { cursor: progress; }
* { box-sizing: border-box; }
[hidden] { display: none !important; }
.bar-of-tools { display: flex; align-items: center; gap: 8px; padding: 4px 8px; background: var(--role-caption-inactive);
  border-bottom: 1px solid var(--role-grid-line); flex: none; }
.tools { display: flex; gap: 4px; flex-wrap: wrap; }
button { font: inherit; color: var(--role-caption-inactive-text); background: transparent; border: 1px solid transparent;
  border-radius: 4px; padding: 4px 10px; min-height: 28px; }
button:hover:not(:disabled) { background: var(--role-row-hover); border-color: var(--role-grid-line); }
button:disabled { color: var(--role-disabled); }
button[aria-pressed="true"], button[aria-selected="true"] { background: var(--role-row-selected); color: var(--role-row-selected-text); }
button.main { background: var(--role-caption-active); color: var(--role-caption-active-text); border-color: var(--role-box-frame); }
:focus-visible { outline: 2px solid var(--role-focus); outline-offset: -2px; }
.pane { position: relative; overflow: hidden; min-height: 48px; background: var(--role-surface); }
.pane.diagram { flex: 46 1 0; } .pane.grid { flex: 28 1 0; background: var(--role-box); } .pane.sql { flex: 26 1 0; display: flex; flex-direction: column; background: var(--role-box); }
.splitter { flex: none; height: 6px; cursor: ns-resize; background: var(--role-caption-inactive); touch-action: none;
  border-block: 1px solid var(--role-grid-line); }
canvas.view { display: block; position: absolute; top: 0; touch-action: none; outline: none; }
.bar { position: absolute; scrollbar-width: auto; }
.bar.horizontal { left: 0; right: 0; bottom: 0; height: 15px; overflow-x: scroll; overflow-y: hidden; }
.bar.vertical { inset-inline-end: 0; top: 0; bottom: 0; width: 15px; overflow-y: scroll; overflow-x: hidden; }
.bar > div { width: 1px; height: 1px; }
.both-bars .bar.horizontal { inset-inline-end: 15px; } .both-bars .bar.vertical { bottom: 15px; }
.access { position: absolute; width: 1px; height: 1px; overflow: hidden; clip-path: inset(50%); pointer-events: none; }
:host([sql-only]) .pane:not(.sql) { opacity: 0.5; }
.editor { position: absolute; font: inherit; padding: 0 5px; border: 0; outline: 2px solid var(--role-focus); outline-offset: -2px;
  background: var(--role-box); color: var(--role-text); border-radius: 0; }
.list, .menu { position: fixed; z-index: 10; margin: 0; padding: 4px 0; list-style: none; background: var(--role-box);
  color: var(--role-text); border: 1px solid var(--role-box-frame); border-radius: 4px; box-shadow: 0 3px 10px #0004;
  overflow: auto; max-height: min(260px, 100vh); font: 13px system-ui, sans-serif; }
.menu { max-height: 100vh; }
.list li { padding: 3px 10px; white-space: pre; display: flex; justify-content: space-between; gap: 24px; cursor: default; }
.list li small { color: var(--role-quiet-text); }
.list li.on, .menu [role^=menuitem]:focus { background: var(--role-row-selected); color: var(--role-row-selected-text); outline: none; }
.menu [role^=menuitem] { padding: 5px 12px 5px 26px; display: flex; justify-content: space-between; gap: 28px; white-space: nowrap;
  cursor: default; position: relative; }
.menu [aria-checked="true"]::before { content: "✓"; position: absolute; left: 9px; }
.menu [aria-disabled="true"] { color: var(--role-disabled); }
.menu [role=separator] { height: 1px; margin: 4px 0; background: var(--role-grid-line); }
.menu kbd { font: inherit; color: var(--role-quiet-text); }
.sql-frame { position: relative; flex: 1; min-height: 0; direction: ltr; }
.sql-frame > * { position: absolute; inset: 0; margin: 0; padding: 8px 12px; border: 0; font: 13px/1.5 ui-monospace, "DejaVu Sans Mono", monospace;
  tab-size: 4; white-space: pre; overflow: auto; letter-spacing: normal; }
.colors { color: var(--role-text); pointer-events: none; overflow: hidden; }
.colors .role-keyword { font-weight: normal; }
textarea.sql { background: transparent; color: transparent; caret-color: var(--role-text); resize: none; outline: none; width: 100%; height: 100%; }
textarea.sql::selection { background: color-mix(in srgb, var(--role-focus) 35%, transparent); }
.fault { text-decoration: underline wavy var(--role-error); text-underline-offset: 3px; }
.bracket, .bracket span { background: var(--role-row-selected); color: var(--role-row-selected-text); }
.bracket.alone, .bracket.alone span { background: none; color: var(--role-error); text-decoration: underline; }
.remarks { flex: none; display: flex; align-items: center; gap: 8px; padding: 2px 12px; max-height: 40%; overflow: auto;
  border-top: 1px solid var(--role-grid-line); background: var(--role-caption-inactive); color: var(--role-caption-inactive-text); flex-wrap: wrap; }
.remarks p { margin: 2px 0; unicode-bidi: plaintext; }
dialog { border: 1px solid var(--role-box-frame); border-radius: 8px; padding: 16px 20px; background: var(--role-box); color: var(--role-text);
  font: 13px system-ui, sans-serif; max-width: min(720px, 94vw); max-height: 92vh; overflow: auto; }
dialog::backdrop { background: #0006; }
dialog form { display: flex; flex-direction: column; gap: 10px; min-width: 300px; }
dialog h2 { font-size: 15px; margin: 0 0 2px; }
dialog input:not([type=checkbox]), dialog select, dialog textarea { font: inherit; color: var(--role-text); background: var(--role-box);
  border: 1px solid var(--role-box-frame); border-radius: 4px; padding: 5px 8px; max-width: 100%; }
dialog div.code { display: flex; flex-direction: column; width: min(560px, 84vw); height: 180px; resize: both; overflow: hidden;
  border: 1px solid var(--role-box-frame); border-radius: 4px; }
dialog div.code.one-line { height: auto; min-height: 0; resize: none; width: auto; }
dialog .one-line .sql-frame { flex: none; height: 32px; } dialog .one-line .sql-frame > * { padding: 6px 8px; overflow: hidden; }
dialog .code { font-family: ui-monospace, "DejaVu Sans Mono", monospace; direction: ltr; }
dialog .field { display: flex; flex-direction: column; gap: 4px; }
dialog .choice { display: flex; gap: 8px; align-items: baseline; padding: 3px 0; }
dialog fieldset { border: 1px solid var(--role-grid-line); border-radius: 4px; margin: 0; }
dialog .buttons { display: flex; justify-content: flex-end; gap: 8px; margin-top: 4px; }
dialog .buttons button { border-color: var(--role-box-frame); min-width: 84px; }
dialog .problem, dialog .warning { color: var(--role-error); margin: 0; }
dialog .quiet { color: var(--role-quiet-text); margin: 0; }
dialog .problem, dialog .warning, dialog .quiet, dialog .said { unicode-bidi: plaintext; text-align: -webkit-match-parent; text-align: match-parent; }
dialog .said { white-space: pre-wrap; margin: 0; max-width: 60ch; }
dialog .pair, dialog .heads { display: grid; grid-template-columns: 1fr auto 1fr auto; gap: 6px; margin: 3px 0; }
dialog .heads { grid-template-columns: 1fr 1fr; }
dialog .more { align-self: start; border-color: var(--role-box-frame); }
dialog .tabs { display: flex; gap: 4px; }
dialog div.code.beside { width: auto; height: 120px; resize: vertical; }
dialog .pieces { display: grid; width: min(640px, 84vw); grid-template-columns: 3fr 2fr; gap: 12px; } dialog .pieces > div { display: flex; flex-direction: column; gap: 8px; min-width: 0; }
dialog .pieces select { min-width: 0; } dialog .pieces p { font-family: ui-monospace, "DejaVu Sans Mono", monospace; overflow-wrap: anywhere; }
dialog .values { display: flex; flex-direction: column; gap: 6px; max-height: 120px; overflow: auto; flex: 1; } dialog .pieces button { align-self: start; border-color: var(--role-box-frame); }
@media (prefers-reduced-motion: no-preference) { button { transition: background 80ms; } }
@media (forced-colors: active) { .view, .colors, textarea.sql, button[aria-pressed="true"], button[aria-selected="true"], button.main { forced-color-adjust: none; } .list li.on, .menu [role^=menuitem]:focus { forced-color-adjust: none; } }
${inks}
`;
