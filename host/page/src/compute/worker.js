// What takes long, away from the page: bytes of recordings, outlines, spectrograms, differences.
import { fitGain, subtract } from './difference.js';
import { outline, peakOf } from './envelope.js';
import { spectrogram } from './spectrogram.js';

const kTasks = {
  // The bytes that a text in base 64 stands for.
  bytes({ text }) {
    const plain = atob(text.replace(/\s+/g, ''));
    const bytes = new Uint8Array(plain.length);
    for (let at = 0; at < plain.length; ++at) bytes[at] = plain.charCodeAt(at);
    return [{ bytes: bytes.buffer }, [bytes.buffer]];
  },

  outline({ channels }) {
    const outlines = channels.map(outline);
    const moved = outlines.flatMap((o) => [o.low.buffer, o.high.buffer, o.power.buffer]);
    return [{ outlines, peak: peakOf(outlines) }, moved];
  },

  async spectrogram({ channels, rate, from, to, columns }) {
    const image = await createImageBitmap(spectrogram(channels, rate, from, to, columns));
    return [{ image }, [image]];
  },

  difference({ a, b, gain }) {
    const used = gain ?? fitGain(a, b);
    const channels = subtract(a, b, used);
    return [{ channels, gain: used }, channels.map((samples) => samples.buffer)];
  },
};

onmessage = async ({ data: { id, task, words } }) => {
  try {
    const [result, moved] = await kTasks[task](words);
    postMessage({ id, result }, moved);
  } catch (error) {
    postMessage({ id, error: String(error) });
  }
};
