// A button that copies a text, and says so.
import { announce, el } from './dom.js';

// Where the clipboard is not for us, as in a file of some browsers, a selection is copied instead.
async function copy(text) {
  try {
    await navigator.clipboard.writeText(text);
    return true;
  } catch {
    const area = el('textarea', { class: 'spoken', 'aria-hidden': 'true', tabindex: '-1' });
    area.value = text;
    document.body.append(area);
    area.select();
    const done = document.execCommand('copy');
    area.remove();
    return done;
  }
}

export function copyButton(text, what, label = 'Copy') {
  const button = el('button', { type: 'button', class: 'small', 'aria-label': `${label} ${what}` },
                    label);
  button.addEventListener('click', async () => {
    const done = await copy(text);
    button.textContent = done ? 'Copied' : 'Not copied';
    announce(done ? `Copied ${what}` : `Could not copy ${what}`);
    button.focus();
    setTimeout(() => { button.textContent = label; }, 1500);
  });
  return button;
}
