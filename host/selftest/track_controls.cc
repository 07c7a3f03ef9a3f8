#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "selftest/control.h"

namespace host {

namespace {

constexpr int kRate = 8000;
constexpr size_t kPiece = 16000;  // 2 s
constexpr size_t kLead = 1000;
constexpr double kPpm = 1e6 / kPiece;  // Of a slope in samples from piece to piece.

// A piece of 2 s of the output.
struct Piece {
  double later = 0;  // Waveform.
  double gain = 1;
};

using Pieces = std::vector<Piece>;

Pieces At(const std::vector<double>& delays) {
  Pieces pieces;
  for (const double later : delays) pieces.push_back({.later = later});
  return pieces;
}

std::string Name(const Pieces& pieces) {
  std::string name = "pieces of 2 s at";
  for (const Piece& each : pieces) name += " " + std::to_string(each.later);
  return name + " samples";
}

// Noise that is known between its samples where one of the delays is no whole number.
Scene InPieces(const Pieces& pieces) {
  const size_t frames = pieces.size() * kPiece;
  const bool whole = std::ranges::all_of(
      pieces, [](const Piece& each) { return each.later == std::round(each.later); });
  const Waveform white = WhiteNoise(whole ? frames + 2 * kLead : 0, 0.1, 81);
  const TimedNoise timed(whole ? 0 : frames + 2 * kLead, 0.1, 81);
  const auto at = [&](double first, size_t count) {
    if (!whole) return timed.At(first, 1, count);
    const auto from = white.begin() + static_cast<std::ptrdiff_t>(first);
    return Waveform(from, from + static_cast<std::ptrdiff_t>(count));
  };
  Waveform output;
  for (size_t i = 0; i < pieces.size(); ++i) {
    const double first = static_cast<double>(kLead + i * kPiece) - pieces[i].later;
    Append(output, Scaled(at(first, kPiece), pieces[i].gain));
  }
  return {.output = {kRate, {output}}, .reference = {kRate, {at(kLead, frames)}}};
}

Control Track(const Pieces& pieces, const std::string& theory, std::vector<Expected> expected) {
  return {Name(pieces), theory, [pieces] { return InPieces(pieces); }, std::move(expected)};
}

// Where the sum of the correlations of white noise, each at its own delay, is highest near a place.
double MostAlike(const std::vector<double>& delays, double near) {
  double highest = 0;
  double place = near;
  for (double at = near - 0.5; at <= near + 0.5; at += 1e-3) {
    double sum = 0;
    for (const double later : delays) {
      const double angle = std::numbers::pi * (at - later);
      sum += std::abs(angle) < 1e-9 ? 1 : std::sin(angle) / angle;
    }
    if (sum <= highest) continue;
    highest = sum;
    place = at;
  }
  return place;
}

std::vector<Control> Drifts() {
  const std::string few = "too few pieces with a clear delay";
  return {
      Track(At({0, 1, 1}),
            "Half a sample from piece to piece by least squares, of a standard error of 0.29: no "
            "drift that stands out, but the line of three pieces.",
            {{"drift", 0.5 * kPpm, 0.2}, {"delay_track", 1.0 / kRate, 0.01 / kRate}}),
      Track(At({0, 1, 3, 3}),
            "1.1 samples from piece to piece, 4.16 standard errors: it is taken out, and in the "
            "middle the delay is the mean of all four, to a part of what it turns within a piece.",
            {{"drift", 1.1 * kPpm, 0.2},
             {"delay", 1.75 / kRate, 0.15 / kRate},
             {"delay_track", 3.0 / kRate, 0.01 / kRate}}),
      Track(At({0, 1, 1, 3}),
            "0.9 samples from piece to piece, 3.4 standard errors: it may be chance, and the delay "
            "is where both are most alike, near that of two pieces.",
            {{"drift", 0.9 * kPpm, 0.2},
             {"delay", MostAlike({0, 1, 1, 3}, 1) / kRate, 0.05 / kRate},
             {"delay_track", 3.0 / kRate, 0.01 / kRate}}),
      Track(
          At({0, 0, 20}),
          "The line of median slope has the first and the last piece on it and the one between 10 "
          "samples away: two are too few.",
          {{.measure = "drift", .reason = few}, {"delay_track", 20.0 / kRate, 0.01 / kRate}}),
      Track(At({0, 6, 2, 6, 3}),
            "The median slope is half a sample from piece to piece, and the pieces are 1, 4.5, 0, "
            "3.5 and 0 samples from its line: the median is 1, and what is within four times that "
            "counts. Four pieces have 9.25 / 8.75 samples from one to the next.",
            {{"drift", 9.25 / 8.75 * kPpm, 0.2}, {"delay_track", 6.0 / kRate, 0.01 / kRate}}),
      Track(At({0, 0, 0, 0, 0.6}),
            "Within a sample of the line of median slope, which is flat, all pieces count: 0.12 "
            "samples from one to the next.",
            {{"drift", 0.12 * kPpm, 0.2}, {"delay_track", 0.6 / kRate, 0.01 / kRate}}),
      Track(At({0, 0, 0, 0, 1.5}), "More than a sample from the line of median slope: it is flat.",
            {{"drift", 0, 0.2}, {"delay_track", 1.5 / kRate, 0.01 / kRate}}),
      Track(At({0, 2, 4, 6, 9.5}),
            "1.5 samples from the line of two samples from piece to piece: it is of four pieces, "
            "known to a part of what it turns within one.",
            {{"drift", 2 * kPpm, 0.1 * kPpm}}),
      Track(At({0, 5, 90, 15, 20}),
            "80 samples, 10 ms, from the line of five samples from piece to piece, which is known "
            "to a part of what it turns within one.",
            {{"drift", 5 * kPpm, 0.25 * kPpm}, {"delay_track", 90.0 / kRate, 2.5 / kRate}})};
}

Control UpsideDown() {
  Pieces pieces = At({0, 1, 1});
  for (Piece& each : pieces) each.gain = -1;
  Control control = Track(pieces, "Upside down the delays of three pieces are the same.",
                          {{"drift", 0.5 * kPpm, 0.2},
                           {"delay_track", 1.0 / kRate, 0.01 / kRate},
                           {"polarity", -1, 1e-9}});
  control.name += ", upside down";
  return control;
}

// Two pieces of noise that repeats itself, but for this share of its power; the second is one
// period late.
Control Repeating(double share) {
  constexpr size_t kPeriod = 200;
  const bool told = share > 1e-3;
  return {
      "noise that repeats itself but for " + std::to_string(share) + " of it",
      "One period earlier the second piece has the correlation 1 less that share. Where the "
      "piece before was it stays, unless another delay is better by a thousandth.",
      [share] {
        const Waveform period = WhiteNoise(kPeriod, 0.1 * std::sqrt(1 - share), 83);
        Waveform noise = WhiteNoise(2 * kPiece + 2 * kLead, 0.1 * std::sqrt(share), 84);
        for (size_t i = 0; i < noise.size(); ++i) noise[i] += period[i % kPeriod];
        const auto at = [&](size_t first, size_t count) {
          const auto from = noise.begin() + static_cast<std::ptrdiff_t>(first);
          return Waveform(from, from + static_cast<std::ptrdiff_t>(count));
        };
        Waveform output = at(kLead, kPiece);
        Append(output, at(kLead + kPiece - kPeriod, kPiece + kPeriod));
        return Scene{.output = {kRate, {output}},
                     .reference = {kRate, {at(kLead, 2 * kPiece)}},
                     .searchSeconds = 0.01};
      },
      {{"delay", 0, 0.1 / kRate}, {"delay_track", told ? 1.0 * kPeriod / kRate : 0, 0.1 / kRate}}};
}

std::vector<Control> Searches() {
  const std::string theory =
      "A piece is looked for within 50 ms of where the last one was found, 400 samples and what is "
      "left of the next one; where the first one is decides the louder of both.";
  std::vector<Control> controls;
  for (const double sign : {1.0, -1.0}) {
    controls.push_back(Track({{.later = 0, .gain = 4}, {.later = sign * 400}}, theory,
                             {{"delay_track", 400.0 / kRate, 0.01 / kRate}}));
    Expected none = {.measure = "delay_track", .reason = "too few pieces with a clear delay"};
    controls.push_back(Track({{.later = 0, .gain = 4}, {.later = sign * 403}}, theory, {none}));
  }
  controls.push_back(
      Track({{.later = 0, .gain = 4}, {.later = 350}, {.later = 700}, {.later = 350}}, theory,
            {{"delay_track", 700.0 / kRate, 0.01 / kRate}}));
  return controls;
}

// Three pieces of 2 s, so many samples longer from piece to piece.
Control Slow(double slope) {
  const bool stands = slope > 4 * 0.02 / std::sqrt(2.0);
  const double ofAll = std::pow(3 * slope * 0.8 * std::numbers::pi / 6, 2);
  return {"a drift of " + std::to_string(slope * kPpm) + " ppm over 6 s",
          "The delay of a piece is taken to be uncertain by 0.02 samples, the slope by 0.014; from "
          "four times that on it is taken out, and what interpolation leaves is 100 dB below. "
          "Before that the delays are spread evenly over three times the slope, which over "
          "frequencies up to 0.8 of half the rate makes an error of (d pi 0.8)^2 / 36.",
          [slope] {
            const TimedNoise noise(3 * kPiece + 2 * kLead, 0.1, 82);
            const double step = 1 / (1 + slope / kPiece);
            return Scene{.output = {kRate, {noise.At(kLead, step, 3 * kPiece)}},
                         .reference = {kRate, {noise.At(kLead, 1, 3 * kPiece)}}};
          },
          {{"drift", slope * kPpm, 0.1},
           {"snr", stands ? 100 : -10 * std::log10(ofAll), stands ? 20 : 0.5}}};
}

// What a piece of 4096 samples at 16 kHz, 0.25 s of them, has in common with the output.
struct Common {
  size_t piece = 0;  // Of 40 that are evenly spread.
  std::ptrdiff_t later = 0;
};

constexpr size_t kShort = 4096;
constexpr size_t kShortFrames = 41 * kShort;

size_t PlaceOf(const Common& common) { return common.piece * (kShortFrames - kShort) / 39; }

// The ppm of the line through them by least squares.
double LineThrough(std::span<const Common> delays) {
  double places = 0;
  double laters = 0;
  for (const Common& each : delays) {
    places += static_cast<double>(PlaceOf(each)) / static_cast<double>(delays.size());
    laters += static_cast<double>(each.later) / static_cast<double>(delays.size());
  }
  double product = 0;
  double squares = 0;
  for (const Common& each : delays) {
    const double away = static_cast<double>(PlaceOf(each)) - places;
    product += away * (static_cast<double>(each.later) - laters);
    squares += away * away;
  }
  return 1e6 * product / squares;
}

Scene InShortPieces(std::span<const Common> pieces) {
  Waveform reference = WhiteNoise(kShortFrames, 0.1, 101);
  Waveform output = WhiteNoise(kShortFrames, 0.1, 102);
  for (const Common& each : pieces) {
    const Waveform common = WhiteNoise(kShort, 0.1, 103 + each.piece);
    const auto place = static_cast<std::ptrdiff_t>(PlaceOf(each));
    const Waveform noisy = Sum(common, NoiseBelow(common, -3, kShort, 203 + each.piece));
    std::ranges::copy(common, reference.begin() + place);
    std::ranges::copy(noisy, output.begin() + place + each.later);
  }
  return {.output = {2 * kRate, {output}},
          .reference = {2 * kRate, {reference}},
          .searchSeconds = 30.0 / (2 * kRate)};
}

// The last two are far from the line that the others lie on.
Control ShortPieces() {
  static constexpr std::array kPieces = {Common{0, 28},   Common{1, 26},   Common{19, -10},
                                         Common{20, -12}, Common{21, -14}, Common{22, -16},
                                         Common{23, -18}, Common{17, -18}, Common{18, -28}};
  return {"a delay of its own for each of nine short pieces, strangers elsewhere",
          "Seven delays are two samples apart from piece to piece; that of piece 17 is 12 samples "
          "from their line, which are less than 1 ms, and counts, and that of piece 18 is 20 from "
          "it and does not. No peak of 61 delays is 8 times their RMS, so that it takes a "
          "correlation of half. A piece with noise 3 dB above it has 0.58; pieces elsewhere share "
          "no more than 0.6 of it, or are twice as long. Pieces 17 to 23 are all beyond 30 samples "
          "from pieces 0 and 1. The standard error of a delay is 0.015 samples.",
          [] { return InShortPieces(kPieces); },
          {{"drift", LineThrough(std::span(kPieces).first(8)), 1}}};
}

}  // namespace

std::vector<Control> TrackControls() {
  std::vector<Control> controls = Drifts();
  for (Control& each : Searches()) controls.push_back(std::move(each));
  controls.push_back(UpsideDown());
  controls.push_back(Repeating(0.005));
  controls.push_back(Repeating(0.0005));
  controls.push_back(Slow(0.0672));
  controls.push_back(Slow(0.048));
  controls.push_back(ShortPieces());
  return controls;
}

}  // namespace host
