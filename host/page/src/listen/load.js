// Fills the tracks of a player, one after the other.
import { ask } from '../work/ask.js';
import { channelsOf, decode, padded, toBuffer } from './recordings.js';
import { linear } from './level_match.js';

async function difference(player, tracks) {
  const [a, b] = player.difference.of.map((key) => tracks.find((track) => track.key === key));
  const gain = typeof player.difference.gain === 'number' ? linear(player.difference.gain) : null;
  const copies = (track) => channelsOf(track.buffer).map((samples) => samples.slice());
  const { channels } = await ask('difference', () => ({ a: copies(a), b: copies(b), gain }));
  return channels;
}

export async function loadTracks(player) {
  const { tracks, rate } = player;
  const recorded = tracks.filter((track) => track.version.audio);
  const buffers = [];
  for (const track of recorded) buffers.push(await decode(track.version.audio, rate));
  const length = Math.max(...buffers.map((buffer) => buffer.length),
                          Math.round(player.seconds * rate));
  for (const [at, track] of recorded.entries()) {
    await track.load(padded(buffers[at], length), player.width);
    player.redraw();
  }
  const rest = tracks.find((track) => track.key === 'difference');
  if (rest) {
    await rest.load(toBuffer(await difference(player.data, tracks), rate), player.width);
  }
}
