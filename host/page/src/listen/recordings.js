// The recordings that the page carries, decoded: lossless, at a rate of the player's choice.
import { ask } from '../compute/ask.js';

// Rates that every browser's audio takes.
const kLowest = 8000;
const kHighest = 192000;

export function playerRate(versions) {
  const rates = versions.map((version) => version.rate || 48000);
  return Math.min(kHighest, Math.max(kLowest, ...rates));
}

// The recordings stand after the script of the page: they may not have been read yet.
function parsed() {
  if (document.readyState !== 'loading') return Promise.resolve();
  return new Promise((done) => addEventListener('DOMContentLoaded', done, { once: true }));
}

// Resolves to an AudioBuffer.
export async function decode(key, rate) {
  let carrier = document.getElementById(`audio-${key}`);
  if (!carrier) {
    await parsed();
    carrier = document.getElementById(`audio-${key}`);
  }
  if (!carrier) throw new Error('the recording is not in this page');
  const { bytes } = await ask('bytes', () => ({ text: carrier.textContent }));
  return new OfflineAudioContext(1, 1, rate).decodeAudioData(bytes);
}

// Makes a buffer of channels.
export function toBuffer(channels, rate) {
  const buffer = new AudioBuffer({ length: channels[0].length, numberOfChannels: channels.length,
                                   sampleRate: rate });
  channels.forEach((samples, at) => buffer.copyToChannel(samples, at));
  return buffer;
}

export function channelsOf(buffer) {
  return Array.from({ length: buffer.numberOfChannels }, (_, at) => buffer.getChannelData(at));
}

// The same recording with zeros after it, so that all versions repeat after the same time.
export function padded(buffer, length) {
  if (buffer.length >= length) return buffer;
  const longer = new AudioBuffer({ length, numberOfChannels: buffer.numberOfChannels,
                                   sampleRate: buffer.sampleRate });
  channelsOf(buffer).forEach((samples, at) => longer.copyToChannel(samples, at));
  return longer;
}
