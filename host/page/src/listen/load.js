// Fills the tracks of a player, one after the other.
import { ask } from '../compute/ask.js';
import { channelsOf, decode, padded, toBuffer } from './recordings.js';
import { playedGain } from './difference_version.js';
import { linear } from './level_match.js';

async function subtracted(difference, tracks) {
  const [a, b] = difference.of.map((key) => tracks.find((track) => track.key === key));
  const played = playedGain(difference, a.version, b.version);
  const gain = played === null ? null : linear(played);
  const copies = (track) => channelsOf(track.buffer).map((samples) => samples.slice());
  const { channels } = await ask('difference', () => ({ a: copies(a), b: copies(b), gain }));
  return channels;
}

// Resolves to whether all are there. When they are not wanted any more, because a reader has gone on, the
// rest is left.
export async function loadTracks(player, wanted) {
  const { tracks, rate } = player;
  const recorded = tracks.filter((track) => track.version.audio);
  const buffers = [];
  for (const track of recorded) {
    buffers.push(await decode(track.version.audio, rate));
    if (!wanted()) return false;
  }
  const length = Math.max(...buffers.map((buffer) => buffer.length),
                          Math.round(player.seconds * rate));
  for (const [at, track] of recorded.entries()) {
    await track.load(padded(buffers[at], length), player.width, wanted);
    if (!wanted()) return false;
    player.redraw();
  }
  const rest = tracks.find((track) => track.key === 'difference');
  if (!rest) return true;
  const channels = await subtracted(player.data.difference, tracks);
  if (!wanted()) return false;
  await rest.load(toBuffer(channels, rate), player.width, wanted);
  return wanted();
}
