// Colours by role, in the order of ColorRole: the CSS custom property that a page sets, and what it is without: light, dark,
// and where the system forces its own colours.
const ROLES = [
  ['surface', '#eef1f4', '#1d2024', 'Canvas'],
  ['surface-text', '#5b6470', '#a4adb8', 'CanvasText'],
  ['box', '#ffffff', '#26292e', 'Canvas'],
  ['box-frame', '#8c949e', '#737b86', 'CanvasText'],
  ['caption-active', '#b9d3f2', '#284869', 'Highlight'],
  ['caption-active-text', '#1b2027', '#f0f3f6', 'HighlightText'],
  ['caption-inactive', '#eceef1', '#34383e', 'ButtonFace'],
  ['caption-inactive-text', '#1b2027', '#f0f3f6', 'ButtonText'],
  ['text', '#1b2027', '#eef1f4', 'CanvasText'],
  ['quiet-text', '#5b6470', '#a9b2bd', 'CanvasText'],
  ['row-hover', '#eaf2fb', '#2c3947', 'Canvas'],
  ['row-selected', '#cfe2f7', '#2a4566', 'Highlight'],
  ['row-selected-text', '#1b2027', '#f0f3f6', 'HighlightText'],
  ['row-alternate', '#f8f9fa', '#2a2d32', 'Canvas'],
  ['grid-line', '#d9dde2', '#42474e', 'CanvasText'],
  ['disabled', '#6b7280', '#8f97a3', 'GrayText'],
  ['join', '#64748b', '#94a3b8', 'CanvasText'],
  ['join-hover', '#1d6fc4', '#7db8f5', 'Highlight'],
  ['join-selected', '#0b57a4', '#8fc5ff', 'Highlight'],
  ['key-icon', '#b7791f', '#e3b341', 'CanvasText'],
  ['focus', '#0b57a4', '#8fc5ff', 'Highlight'],
  ['error', '#c0261f', '#ff8a80', 'CanvasText'],
  ['warning', '#8a5a00', '#e0b050', 'CanvasText'],
  ['keyword', '#1d4ed8', '#82b1ff', 'CanvasText'],
  ['literal', '#8e2aa0', '#dca8f0', 'CanvasText'],
  ['comment', '#4b7353', '#8fbf98', 'CanvasText'],
  ['identifier', '#1b2027', '#eef1f4', 'CanvasText'],
];

// What the numbers of system colours are here; all others are text.
const SYSTEM = {1: 0, 5: 2, 12: 0, 13: 11, 15: 3, 17: 15};
const TEXT = 8;

const block = column => ROLES.map(role => `--zr-default-${role[0]}: ${role[column]};`).join(' ');

/** The defaults as rules for the element; `theme="light"` and `theme="dark"` override what the system prefers. */
export const themeRules = `
  :host { ${block(1)} color-scheme: light; }
  @media (prefers-color-scheme: dark) { :host(:not([theme="light"])) { ${block(2)} color-scheme: dark; } }
  :host([theme="dark"]) { ${block(2)} color-scheme: dark; }
  @media (forced-colors: active) { :host(:is([theme], :not([theme]))) { ${block(3)} } }  /* as particular as those above */
  :host { ${ROLES.map(([name]) => `--role-${name}: var(--zr-${name}, var(--zr-default-${name}));`).join(' ')} }
`;

/** The name of a role by its number, for class names and custom properties. */
export const roleName = number => ROLES[number]?.[0] ?? ROLES[TEXT][0];

/** Reads what the element's custom properties say now. */
export function readTheme(element) {
  const style = getComputedStyle(element);
  const roles = ROLES.map(([name]) => style.getPropertyValue(`--role-${name}`).trim());
  return ink => {
    if (ink >= 0x2000000) return roles[SYSTEM[ink & 0xff] ?? TEXT];
    if (ink >= 0x1000000) return '#' + (ink & 0xffffff).toString(16).padStart(6, '0');
    return roles[ink];
  };
}
