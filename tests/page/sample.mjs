// A run as it comes from the bench, with cases of every kind; its recordings are generated.
import { flac } from './flac.mjs';
import { echo, level, noise, random, scaled, speech, sum } from './signals.mjs';

const kGroups = [
  ['TestZUAec', 'aec', 'erle', 'dB', 'higher'], ['TestDenoiseProcess', 'enhancement', 'snr', 'dB', 'higher'],
  ['TestZUCodecNew', 'codec', 'stoi', '1', 'higher'], ['TestReverb', 'effects', 'rt60', 's', 'none'],
  ['TestDrc', 'effects', 'loudness', 'LUFS', 'none'],
  ['TestAudioResamplerEx', 'mixing', 'thd_n', 'dB', 'lower'],
];
const kTalkers = ['anna', 'bert', 'clara', 'dario'];
const kPlaces = ['office', 'car', 'street', 'hall', 'kitchen'];

// Verdict, change and how many of a hundred cases.
const kKinds = [['error', null, 1], ['fail', 'worse', 2], ['pass', 'worse', 3], ['warn', 'same', 6],
                ['pass', 'undecided', 5], ['known', 'same', 2], ['pass', 'better', 6],
                ['pass', 'same', 71], ['skip', null, 4]];

function kindOf(place, of) {
  let sofar = 0;
  for (const kind of kKinds) {
    sofar += Math.max(1, Math.round(kind[2] * of / 100));
    if (place < sofar) return kind;
  }
  return kKinds[7];
}

const rounded = (value, digits = 3) => Number(value.toFixed(digits));

function figures(place, file, kind, next, channels) {
  const [, , name, unit, better] = kGroups[place % kGroups.length];
  const step = { worse: -3.1, better: 2.4, undecided: 0.4 }[kind[1]] ?? 0;
  const turn = better === 'lower' ? -1 : 1;
  const value = rounded((unit === '1' ? 0.8 : 18) + 2 * next());
  const scale = unit === '1' ? 0.03 : 1;
  const main = { file, channel: null, name, value, unit, better, reason: null, untrusted: false,
                 against: rounded(value - turn * scale * step), change: kind[1] };
  const others = [['peak', 'dBFS', 'none'], ['rms', 'dBFS', 'none'], ['loudness', 'LUFS', 'none'],
                  ['noise_floor', 'dBFS', 'lower'], ['true_peak', 'dBTP', 'none'],
                  ['bandwidth', 'Hz', 'none'], ['clipped', 'samples', 'lower'],
                  ['active_level', 'dBov', 'none'], ['activity', '1', 'none'],
                  ['centroid', 'Hz', 'none']].flatMap(([n, u, b], at) =>
    Array.from({ length: channels }, (_, channel) => {
    const v = u === 'Hz' ? 7400 : u === 'samples' ? 0 : rounded(-3 - 6 * at + next(), 2);
    return { file, channel, name: n, value: v, unit: u, better: b, reason: null, untrusted: false,
             against: v, change: 'same' };
    }));
  return [main, ...others, { file: null, channel: null, name: 'near_sdr', value: null, unit: 'dB',
                             better: 'higher', reason: 'no near end was given', untrusted: false,
                             against: null, change: null }];
}

const hash = (place, of) => (BigInt(place * 977 + of * 31 + 7) ** 40n).toString(16).slice(0, 64)
  .padEnd(64, '0');

// Microphone, clean voice, what came out now and before. A few recordings serve all cases.
function recordings(place, kind, rate, seconds) {
  const voice = speech(seconds, rate, 0.7, place + 1);
  const mic = sum(voice, echo(speech(seconds, rate, 0.5, place + 9), rate, 0.08, 0.5),
                  noise(seconds, rate, 0.02, place));
  const left = kind[1] === 'worse' ? 0.12 : 0.02;
  const out = sum(voice, scaled(noise(seconds, rate, 1, place + 3), left * 0.2));
  if (kind[0] === 'fail') out.fill(0, Math.round(2.1 * rate), Math.round(2.16 * rate));
  if (kind[0] === 'warn') out[Math.round(2.4 * rate)] = 0.999;
  const before = sum(voice, scaled(noise(seconds, rate, 1, place + 4), 0.004));
  return { output: scaled(out, 0.8), input: mic, reference: voice, against: scaled(before, 0.8) };
}

const m_files = new Map();

// FLAC files and levels of these recordings, made once.
function recorded(place, kind, { rate, seconds, channels }) {
  const which = [place % 2, kind[0], kind[1] === 'worse', rate, seconds, channels].join();
  if (!m_files.has(which)) {
    const signals = Object.entries(recordings(place % 2, kind, rate, seconds));
    m_files.set(which, Object.fromEntries(signals.map(([key, samples]) => [key, {
      bytes: flac(Array.from({ length: channels }, () => samples), rate, 16),
      lufs: rounded(level(samples), 2) }])));
  }
  return m_files.get(which);
}

const kLabels = { output: 'Output', input: 'Microphone', reference: 'Clean voice',
                  against: 'Before' };

function player(place, kind, audio, options) {
  const { rate, seconds, channels, keys } = options;
  const files = recorded(place, kind, options);
  const start = 12;
  const marks = { fail: [{ at: start + 2.1, channel: 0, name: 'dropout' }],
                  warn: [{ at: start + 2.4, channel: null, name: 'click' }] }[kind[0]] ?? [];
  const versions = keys.map((key) => {
    const name = `${place}-${key}`;
    const { bytes, lufs } = files[key];
    audio.set(name, bytes);
    return { key, label: kLabels[key], file: key === 'against' ? 'out.wav' : `${key === 'output' ? 'out'
      : key}.wav`, audio: name, href: null, rate, channels, lufs, gain: 0,
             delay: key === 'output' ? 0 : 0.0123 };
  });
  const next = random(place + 50);
  return { title: 'out.wav', start, seconds, whole: 34.5, marks, versions,
           difference: { of: [keys[0], keys.at(-1)], db: -41.27, relative: -18.4, gain: 0,
                         identical: false },
           curves: place % 6 === 0 ? [{ name: 'ERLE', unit: 'dB', from: start, step: 0.1,
             values: Array.from({ length: seconds * 10 }, (_, n) =>
               n === 17 ? null : rounded(24 + 6 * Math.sin(n / 4) + 3 * next())) }] : [] };
}

const kGuards = {
  fail: { name: 'dropout', at: 14.1, fails: true,
          text: '2 ms or more of exact zeros while the input has signal.' },
  warn: { name: 'click', at: 14.4, fails: false,
          text: 'A sample is far off what its neighbours let expect.' },
};

const kReasons = {
  error: 'the routine ended its process (signal 11)', fail: 'dropout in out.wav at 14.100 s',
  warn: 'click in out.wav at 14.400 s', skip: 'its library is not there',
};

function oneCase(place, of, audio, options) {
  const kind = kindOf(place, of);
  const [routine, group] = kGroups[place % kGroups.length];
  const tags = [kPlaces[place % 5], place % 2 ? 'wide' : 'narrow'];
  const id = `${group}/${kTalkers[place % 4]}_${tags[0]}_${String(place).padStart(3, '0')}`;
  const next = random(place + 7);
  const guard = kGuards[kind[0]];
  const heard = place < options.heard && kind[0] !== 'skip' && kind[0] !== 'error';
  const command = `audio_bench run ${routine} mic.wav far.wav out.wav true`;
  return {
    id, routine, group, tags, known: kind[0] === 'known' ? 'a step in the far end' : null,
    cluster: null, arguments: ['mic.wav', 'far.wav', 'out.wav', 'true'], verdict: kind[0],
    cause: kind[0] === 'error' ? 'crash' : kind[0] === 'fail' ? 'guard' : 'none',
    reason: kReasons[kind[0]] ?? '', change: kind[1],
    against_verdict: kind[1] ? 'pass' : null, elapsed: rounded(1 + next()), cpu: rounded(0.4 + 0.2 * next()),
    rtf: rounded(0.04 + 0.01 * next(), 4),
    results: [{ name: 'delay', value: 89, unit: 'ms', better: 'none', file: null, reason: null,
                against: 89, change: 'same' }],
    guards: guard ? [{ ...guard, file: 'out.wav', channel: 0, new: true }] : [],
    figures: kind[0] === 'skip' ? [] : figures(place, 'out.wav', kind, next, options.channels),
    files: ['mic.wav', 'far.wav', 'out.wav'].map((name, at) => ({
      name, role: ['input', 'far', 'output'][at], sha256: hash(place, at), path: `cases/${place}/${name}`,
      channels: options.channels })),
    players: heard ? [player(place, kind, audio, options)] : [], notes: [],
    log: `[engine] opened mic.wav, 16000 Hz, 1 channel\n[aec] delay 89 ms\n[aec] done`,
    command, report: `cases/${place}/report.json`,
  };
}

const measure = (worst, name, unit, better, difference, half, margin, verdict, extra = {}) => ({
  name, unit, better, n: 24, clusters: null, a: 18.42, b: rounded(18.42 + difference),
  difference, low: half === null ? null : rounded(difference - half),
  high: half === null ? null : rounded(difference + half), p: 0.031, wins: 9, losses: 14,
  worst_case: worst, margin, verdict, to_truth: false, untrusted: false, holds: verdict !== 'undecided',
  more: null, ...extra });

// options: cases, how many of them are heard, rate, seconds, channels, and the keys of the versions.
export function makeSample(options = {}) {
  const all = { cases: 80, heard: 30, rate: 16000, seconds: 6, channels: 1,
                keys: ['output', 'input', 'reference', 'against'], ...options };
  const audio = new Map();
  const cases = Array.from({ length: all.cases }, (_, place) => oneCase(place, all.cases, audio, all));
  const counts = {};
  for (const one of cases) counts[one.verdict] = (counts[one.verdict] ?? 0) + 1;
  const worst = cases.find((one) => one.change === 'worse')?.id ?? null;
  const data = {
    version: 1, title: 'calls.toml', suite: 'calls.toml',
    sentence: `${all.cases} cases: ${counts.pass} pass, ${counts.fail ?? 0} fail, ` +
              `${cases.filter((c) => c.change === 'worse').length} are worse than baseline spring`,
    bench: '0.2.0 (4f1c9ab)', engine: 'desktop engine 0.2.0', machine: 'Ryzen 7 5800X, 8 processors',
    started: '2026-11-20T10:15:00Z', command: 'audio_bench suite calls.toml --out now --report',
    against: { name: 'baseline:spring', verdict: 'worse', engine: 'desktop engine 0.2.0',
               started: '2026-11-02T09:00:00Z' },
    counts,
    measures: [
      measure(worst, 'erle', 'dB', 'higher', -3.104, 0.81, 0.5, 'worse'),
      measure(worst, 'snr', 'dB', 'higher', -0.42, 0.72, 0.5, 'undecided', { more: 31 }),
      measure(worst, 'noise_floor', 'dBFS', 'lower', -0.8, null, 0.5, 'undecided'),
      measure(worst, 'delay_error', 'ms', 'lower', 0, 0, 1, 'same', { to_truth: true }),
      measure('codec/erik_train_112', 'stoi', '1', 'higher', 0.031, 0.012, 0.01, 'better', { holds: false }),
    ],
    total: all.cases, shown: all.cases, worst_only: '',
    left_out: '12 of 90 recordings are left out to stay below 20 MB; --folder writes all.', cases,
  };
  return { data, audio };
}
