// What the page works out, without a browser: chance, levels, filters, outlines.
import assert from 'node:assert/strict';
import test from 'node:test';
import { BlindTest, chance } from '../../host/page/src/listen/abx.js';
import { matchLevels } from '../../host/page/src/listen/level_match.js';
import { describeInterval } from '../../host/page/src/screen/interval_bar.js';
import { changed, choose, formatFragment, kEmpty, parseFragment }
  from '../../host/page/src/screen/filter_state.js';
import { fitGain, subtract } from '../../host/page/src/compute/difference.js';
import { column, kBlock, outline, peakOf } from '../../host/page/src/compute/envelope.js';
import { channel, channelsOfFile, count, duration, laneWords, meaning, number, signed, signedNumber, time,
         when } from '../../host/page/src/words.js';
import { joinMarks } from '../../host/page/src/listen/layer.js';
import { differenceVersion, playedGain, sameWords } from '../../host/page/src/listen/difference_version.js';
import { waveHeight } from '../../host/page/src/listen/player_size.js';
import { TimeView } from '../../host/page/src/draw/time_view.js';

test('chance is the upper end of the binomial distribution', () => {
  assert.equal(chance(0, 0), 1);
  assert.equal(chance(5, 5), 1 / 32);
  assert.equal(chance(4, 5), 6 / 32);
  assert.equal(chance(8, 10), 56 / 1024);
  assert.equal(chance(0, 10), 1);
  assert.ok(Math.abs(chance(12, 16) - 2517 / 65536) < 1e-15);
});

test('a blind test counts what is right, draws X anew and ends as planned', () => {
  const tosses = ['a', 'b', 'b', 'a'];
  const blind = new BlindTest(3, () => tosses.shift());
  blind.answer('a');
  blind.answer('a');
  assert.deepEqual([blind.trials, blind.right, blind.x, blind.done], [2, 1, 'b', false]);
  blind.answer('b');
  assert.deepEqual([blind.trials, blind.right, blind.done], [3, 2, true]);
  assert.equal(blind.p, 4 / 8);
  blind.answer('b');
  assert.equal(blind.trials, 3);
});

test('the coin of a blind test falls on both sides', () => {
  const drawn = new Set(Array.from({ length: 200 }, () => new BlindTest(1).x));
  assert.deepEqual([...drawn].sort(), ['a', 'b']);
});

const near = (value, expected) => assert.ok(Math.abs(value - expected) < 1e-9, `${value}`);

test('a soft version comes up to the loud one where its peak allows it', () => {
  const gains = matchLevels([{ key: 'a', lufs: -20, peak: 1 }, { key: 'b', lufs: -26, peak: 0.1 }]);
  near(gains.get('a'), 0);
  near(gains.get('b'), 6);
});

test('both meet where the peak of the soft one ends', () => {
  const gains = matchLevels([{ key: 'a', lufs: -20, peak: 0.5 },
                             { key: 'b', lufs: -50, peak: 10 ** (-11 / 20) }]);
  near(gains.get('b'), 10);
  near(gains.get('a'), -20);
});

test('what is too soft or unknown is left as it is', () => {
  const gains = matchLevels([{ key: 'a', lufs: -20, peak: 0.5 }, { key: 'b', lufs: null, peak: 0 },
                             { key: 'c', lufs: -90, peak: 0.1 }]);
  assert.deepEqual([...gains.values()], [0, 0, 0]);
});

const kCases = [
  { id: 'one', group: 'aec', tags: ['car'], verdict: 'fail', change: 'worse', reason: 'a dropout',
    elapsed: 1, figures: [{ name: 'erle', value: 10, against: 12, better: 'higher', channel: null }] },
  { id: 'two', group: 'codec', tags: [], verdict: 'pass', change: 'same', elapsed: 3,
    figures: [{ name: 'erle', value: 9, against: 14, better: 'higher', channel: null }] },
  { id: 'ten', group: 'aec', tags: ['car', 'wide'], verdict: 'warn', change: null, elapsed: 2 },
];
const chosen = (part) => choose(kCases, { ...kEmpty, ...part });

test('each filter leaves out what it should', () => {
  assert.deepEqual(chosen({}), [0, 1, 2]);
  assert.deepEqual(chosen({ text: 'DROP a' }), [0]);
  assert.deepEqual(chosen({ group: 'aec' }), [0, 2]);
  assert.deepEqual(chosen({ tag: 'wide' }), [2]);
  assert.deepEqual(chosen({ verdict: ['pass', 'warn'] }), [1, 2]);
  assert.deepEqual(chosen({ change: ['worse'] }), [0]);
  assert.deepEqual(chosen({ measure: 'erle' }), [0, 1]);
  assert.deepEqual(chosen({ case: 'two' }), [1]);
});

test('each order is what it says', () => {
  assert.deepEqual(chosen({ order: 'id' }), [0, 2, 1]);
  assert.deepEqual(chosen({ order: 'slowest' }), [1, 2, 0]);
  assert.deepEqual(chosen({ measure: 'erle', order: 'measure' }), [1, 0]);
});

test('a choice survives the address', () => {
  const state = { ...kEmpty, text: 'a&b #c', verdict: ['fail', 'warn'], order: 'id', case: 'x/<y>' };
  assert.deepEqual(parseFragment(`#${formatFragment(state)}`), state);
  assert.equal(formatFragment(kEmpty), '');
});

test('an outline has the peaks of its samples, near and far', () => {
  const samples = Float32Array.from({ length: 1000 }, (_, n) => n === 500 ? -0.75 : n % 2 ? 0.25 : 0);
  const lines = outline(samples);
  assert.equal(peakOf([lines]), 0.75);
  for (const [from, to] of [[490, 510], [0, 1000]]) {
    const seen = column(samples, lines, from, to, {});
    assert.deepEqual([seen.low, seen.high], [-0.75, 0.25]);
  }
  const far = column(samples, lines, 0, 10 * kBlock, {});
  near(far.rms, Math.sqrt(0.0625 / 2));
});

test('the difference of two that are alike but for a gain is nothing', () => {
  const b = [Float32Array.from([0.5, -0.25, 0.125, 0.5])];
  const a = [b[0].map((v) => 0.5 * v)];
  const gain = fitGain(a, b);
  near(gain, 0.5);
  assert.deepEqual([...subtract(a, b, gain)[0]], [0, 0, 0, 0]);
});

test('a zoom keeps its place and stays within the recording', () => {
  const view = new TimeView(10);
  view.zoom(2, 4);
  assert.deepEqual([view.from, view.to], [2, 7]);
  view.pan(100);
  assert.deepEqual([view.from, view.to], [5, 10]);
  view.zoom(0.01, 5);
  assert.deepEqual([view.from, view.to], [0, 10]);
});

test('figures and times are written as readers write them', () => {
  assert.equal(number(-3.104, 'dB'), '\u22123.10');
  assert.equal(number(1234567), '1\u2009234\u2009567');
  assert.equal(number(null), '\u2013');
  assert.equal(number(0.00001234), '1.23e\u22125');
  assert.equal(signed(2.5, 'dB'), '+2.50\u00a0dB');
  assert.equal(time(62.5), '1:02.500');
  assert.equal(time(13.2), '13.200\u00a0s');
  assert.equal(when('2026-11-20T10:15:00Z'), '2026-11-20 10:15 UTC');
});

test('marks at one place become one with all their names', () => {
  const marks = [{ at: 2, name: 'iut' }, { at: 1, name: 'click' }, { at: 1.01, name: 'dc' },
                 { at: 1.02, name: 'click' }];
  assert.deepEqual(joinMarks(marks), [{ at: 1, name: 'click, dc' }, { at: 2, name: 'iut' }]);
});

test('levels to full scale differ by decibels and loudness units', () => {
  const units = ['dBFS', 'dBTP', 'LUFS', 'dB', 's'].map((unit) => signed(1.5, unit).split('\u00a0')[1]);
  assert.deepEqual(units, ['dB', 'dB', 'LU', 'dB', 's']);
  const measure = { unit: 'LUFS', low: -1, high: 0.5, margin: 0.1 };
  assert.equal(describeInterval(measure),
               'from \u22121.00\u00a0LU to +0.50\u00a0LU, margin 0.10\u00a0LU');
});

test('a difference has a sign but where it rounds to nothing', () => {
  assert.equal(signed(-0.001, 'dB'), '0.00\u00a0dB');
  assert.equal(signed(0.001, 'dB'), '0.00\u00a0dB');
  assert.equal(signed(0), '0');
  assert.equal(signedNumber(12345, 'Hz'), '+12\u2009345');
  assert.equal(signedNumber(-0.00001234), '\u22121.23e\u22125');
  assert.equal(signedNumber(null), '\u2013');
});

test('times round to the next minute', () => {
  assert.equal(time(119.9996), '2:00.000');
  assert.equal(time(59.9996), '1:00.000');
  assert.equal(time(59.97, 1), '1:00.0');
  assert.equal(duration(0.25), '250\u00a0ms');
  assert.equal(duration(2), '2.00\u00a0s');
});

test('channels are called by what their file has', () => {
  const one = { files: [{ name: 'a', role: 'input', channels: 6 }, { name: 'a', role: 'output', channels: 2 },
                        { name: 'b', role: 'output' }] };
  assert.deepEqual([channelsOfFile(one, 'a'), channelsOfFile(one, 'b'), channelsOfFile({}, 'a')],
                   [2, null, null]);
  assert.deepEqual([0, 1].map((at) => channel(at, 2)), ['left', 'right']);
  assert.deepEqual([channel(0, 1), channel(null, 2)], ['', '']);
  assert.deepEqual([channel(0, 6), channel(2, 6), channel(0)], ['channel 1', 'channel 3', 'channel 1']);
  assert.deepEqual([laneWords(1), laneWords(2), laneWords(3)], [['\u2212\u221e'], ['L', 'R'], ['1', '2', '3']]);
  assert.deepEqual([1, 2, 6].map((channels) => waveHeight({ channels })), [56, 76, 108]);
});

test('a choice leaves the link to one case, and a measure brings its order', () => {
  const linked = { ...kEmpty, case: 'one' };
  assert.deepEqual(changed(linked, { text: 'a' }), { ...kEmpty, text: 'a' });
  assert.deepEqual(changed(kEmpty, { case: 'two' }), { ...kEmpty, case: 'two' });
  const measured = changed(kEmpty, { measure: 'erle' });
  assert.equal(measured.order, 'measure');
  assert.deepEqual(changed(measured, { measure: '' }), kEmpty);
  assert.equal(changed({ ...kEmpty, order: 'id' }, { measure: 'erle' }).order, 'id');
});

test('where neither more nor less is better what has changed most comes first', () => {
  const cases = [[1, 0], [5, 9], [3, 0], [2, null]].map(([value, against], at) => ({
    id: `${at}`, figures: [{ name: 'rt60', value, against, better: 'none', channel: null }] }));
  assert.deepEqual(choose(cases, { ...kEmpty, measure: 'rt60', order: 'measure' }), [1, 2, 0, 3]);
  const lower = cases.slice(0, 3).map((one) => ({ ...one, figures: [{ ...one.figures[0], better: 'lower' }] }));
  assert.deepEqual(choose(lower, { ...kEmpty, measure: 'rt60', order: 'measure' }), [2, 0, 1]);
});

test('words of an address or of data that the page does not know do no harm', () => {
  assert.deepEqual(chosen({ order: '__proto__' }), [0, 1, 2]);
  assert.equal(meaning('constructor'), '');
  assert.match(meaning('undecided'), /spread/);
});

test('of two recordings that play softer than their files the difference is that of the files', () => {
  const a = { gain: -6 };
  const b = { gain: -1.5 };
  assert.equal(playedGain({ gain: 2 }, a, b), -2.5);
  assert.equal(playedGain({ gain: 2 }, {}, {}), 2);
  assert.equal(playedGain({}, a, b), null);
});

test('things are counted as one counts them', () => {
  assert.deepEqual([count(1, 'case'), count(2, 'case'), count(0, 'case')], ['1 case', '2 cases', '0 cases']);
});

test('a figure is that of all channels where there is one', () => {
  const figures = [{ name: 'snr', value: 1, better: 'higher', channel: 0 },
                   { name: 'snr', value: 9, better: 'higher', channel: null }];
  const other = [{ name: 'snr', value: 5, better: 'higher', channel: 1 }];
  const cases = [{ id: 'a', figures }, { id: 'b', figures: other }];
  assert.deepEqual(choose(cases, { ...kEmpty, measure: 'snr', order: 'measure' }), [1, 0]);
});

test('a text is looked for in files, hashes, arguments and results too', () => {
  const cases = [{ id: 'a', files: [{ name: 'mic.wav', sha256: 'cafe01' }] },
                 { id: 'b', arguments: ['far.wav'] }, { id: 'c', results: [{ name: 'bpm' }] }];
  const found = (text) => choose(cases, { ...kEmpty, text });
  assert.deepEqual([found('mic'), found('CAFE'), found('far'), found('bpm')], [[0], [0], [1], [2]]);
});

test('orders count as readers do, keep equal ones as they are, and put unknown times last', () => {
  const cases = [{ id: 'c10', elapsed: 0.5 }, { id: 'c9' }, { id: 'c9', elapsed: 0.5 }];
  assert.deepEqual(choose(cases, { ...kEmpty, order: 'id' }), [1, 2, 0]);
  assert.deepEqual(choose(cases, { ...kEmpty, order: 'slowest' }), [0, 2, 1]);
  assert.equal(formatFragment({ ...kEmpty, verdict: ['fail', 'warn'] }), 'verdict=fail,warn');
});

test('a difference is a version where both of its recordings are in the page', () => {
  const version = (key, audio) => ({ key, label: `The ${key}`, audio, channels: 1 });
  const player = (extra, audio = 'a') => ({ versions: [version('output', 'b'), version('input', audio)],
    difference: { of: ['output', 'input'], db: -40, relative: -20, identical: false, ...extra } });
  assert.equal(differenceVersion(player({})).file,
               'The output less the input \u00b7 \u221240.00\u00a0dBFS \u00b7 \u221220.00\u00a0dB beside the input');
  assert.equal(sameWords(player({})), '');
  // Of two that are the same nothing is drawn, but said.
  const same = player({ db: null, relative: null, identical: true });
  assert.equal(differenceVersion(same), null);
  assert.equal(sameWords(same),
               'No difference: The output and The input are the same here, sample for sample.');
  assert.equal(sameWords({ versions: [], difference: null }), '');
  assert.equal(differenceVersion(player({}, null)), null);
  assert.equal(differenceVersion({ versions: [], difference: null }), null);
});

test('an outline near by is that of the samples alone, also between two of them', () => {
  const samples = Float32Array.from({ length: 640 }, (_, n) => n / 640);
  const lines = outline(samples);
  near(column(samples, lines, 100.2, 100.4, {}).low, samples[100]);
  assert.deepEqual([column(samples, lines, 33, 40, {}).low, column(samples, lines, 33, 40, {}).high],
                   [samples[33], samples[39]]);
  const beyond = column(samples, lines, 700, 710, {});
  assert.deepEqual([beyond.low, beyond.high, beyond.rms], [0, 0, 0]);
});

test('a difference of several channels is one for each; of silence nothing is fitted', () => {
  const a = [Float32Array.from([1, 1]), Float32Array.from([0.5, 0.5])];
  const b = [Float32Array.from([1, 1]), Float32Array.from([0.25, 0.25])];
  assert.deepEqual(subtract(a, b, 1).map((samples) => [...samples]), [[0, 0], [0.25, 0.25]]);
  assert.deepEqual(subtract(a, [b[0]], 1).map((samples) => [...samples]), [[0, 0], [-0.5, -0.5]]);
  near(fitGain(a, b), (2 + 0.25) / (2 + 0.125));
  assert.equal(fitGain(a, [new Float32Array(2)]), 1);
});

test('a view goes no closer than 2 ms, and follows what plays out of it', () => {
  const view = new TimeView(10);
  view.follow(9);
  assert.deepEqual([view.from, view.to], [0, 10]);
  view.show(4, 4.0001);
  near(view.span, 0.002);
  view.show(2, 4);
  view.follow(4);
  assert.deepEqual([view.from, view.to], [2, 4]);
  view.follow(4.5);
  assert.deepEqual([view.from, view.to], [4.5, 6.5]);
  view.follow(1);
  assert.deepEqual([view.from, view.to], [1, 3]);
});

test('numbers have four figures, small ones an exponent, large ones no fraction', () => {
  assert.deepEqual([number(0.00051), number(0.001234), number(12345.6), number(1234.56)],
                   ['5.10e\u22124', '0.001234', '12\u2009346', '1235']);
  assert.equal(duration(1.5), '1.50\u00a0s');
  assert.equal(channel(2, 2), 'channel 3');
});

test('one alone is not made softer to fit nothing', () => {
  const gains = matchLevels([{ key: 'a', lufs: -20, peak: 0.5 }]);
  assert.deepEqual([...gains], [['a', 0]]);
});
