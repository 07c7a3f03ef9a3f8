#include <map>
#include <vector>

#include "audio_measures/aligned_pair.h"
#include "audio_measures/alignment.h"
#include "audio_measures/band_difference.h"
#include "audio_measures/cepstral_distance.h"
#include "audio_measures/delay_track.h"
#include "audio_measures/difference.h"
#include "audio_measures/groups.h"
#include "audio_measures/intelligibility.h"
#include "audio_measures/short_spectra.h"

namespace audio_measures {

namespace {

constexpr Measure kMeasures[] = {
    // A quarter of a sample at 48 kHz: the same build gives the same delay again.
    {.name = "delay",
     .unit = "s",
     .definition = "By how much the output is later than the reference, to a fraction of a sample.",
     .source = "C. Knapp, G. Carter, IEEE Trans. ASSP 24(4), 1976; A. Piersol, ibid. 29(3), 1981",
     .version = kDelayVersion,
     .margin = 5e-6,
     .needs = kReference,
     .leastSeconds = 0.2},
    {.name = "delay_track",
     .unit = "s",
     .better = Better::kLower,
     .definition = "How far the delays of its pieces of 2 s lie apart.",
     .source = "as delay",
     .version = kDelayTrackVersion,
     .margin = 2e-5,
     .needs = kReference,
     .leastSeconds = 4},
    {.name = "drift",
     .unit = "ppm",
     .definition = "By how much the output is longer than the reference.",
     .source = "least squares through the delays of pieces",
     .version = kDriftVersion,
     .margin = 2,
     .needs = kReference,
     .leastSeconds = 6},
    {.name = "gain",
     .unit = "dB",
     .definition = "The gain from the reference to what the output has in common with it.",
     .source = "projection by least squares",
     .version = kGainVersion,
     .margin = 0.05,
     .needs = kReference,
     .leastSeconds = 0.2},
    {.name = "polarity",
     .unit = "",
     .definition = "1, or -1 when the output is upside down.",
     .source = "sign of the correlation",
     .version = kPolarityVersion,
     .margin = 0.5,
     .needs = kReference,
     .leastSeconds = 0.2},
    {.name = "snr",
     .unit = "dB",
     .better = Better::kHigher,
     .definition = "Energy of the reference over that of the difference, both aligned in time and "
                   "gain; 120 at most.",
     .source = "10 log10(|s|^2 / |s - y|^2)",
     .version = kSnrVersion,
     .margin = 0.1,
     .needs = kReference,
     .leastSeconds = 0.2},
    {.name = "si_sdr",
     .unit = "dB",
     .better = Better::kHigher,
     .definition = "Energy of what the output has of the reference over that of all else in it; "
                   "120 at most.",
     .source = "J. Le Roux et al., SDR - half-baked or well done?, ICASSP 2019",
     .version = kSiSdrVersion,
     .margin = 0.1,
     .needs = kReference,
     .leastSeconds = 0.2},
    {.name = "seg_snr",
     .unit = "dB",
     .better = Better::kHigher,
     .definition = "Mean of the SNR of blocks of 20 ms, each held within -10 and 35 dB.",
     .source = "J. Hansen, B. Pellom, ICSLP 1998; Y. Hu, P. Loizou, IEEE Trans. ASLP 16(1), 2008",
     .version = kSegSnrVersion,
     .margin = 0.1,
     .needs = kReference,
     .leastSeconds = 0.2},
    {.name = "fw_seg_snr",
     .unit = "dB",
     .better = Better::kHigher,
     .definition = "Segmental SNR of the spectra in 25 critical bands, weighted by the reference.",
     .source = "Y. Hu, P. Loizou, IEEE Trans. ASLP 16(1), 2008",
     .version = kFwSegSnrVersion,
     .margin = 0.1,
     .needs = kReference,
     .leastSeconds = 0.2},
    {.name = "cepstral_distance",
     .unit = "dB",
     .better = Better::kLower,
     .definition = "Distance of the cepstra of linear prediction, mean of the best 95 % of blocks.",
     .source = "Y. Hu, P. Loizou, IEEE Trans. ASLP 16(1), 2008",
     .version = kCepstralDistanceVersion,
     .margin = 0.05,
     .needs = kReference,
     .leastSeconds = 0.2},
    {.name = "lsd",
     .unit = "dB",
     .better = Better::kLower,
     .definition = "Root mean square over frequency of the difference of log spectra, mean over "
                   "blocks.",
     .source = "A. Gray, J. Markel, IEEE Trans. ASSP 24(5), 1976",
     .version = kLsdVersion,
     .margin = 0.1,
     .needs = kReference,
     .leastSeconds = 0.2},
    {.name = "band_difference",
     .unit = "dB",
     .better = Better::kLower,
     .definition = "Mean over third-octave bands of how far the levels lie apart.",
     .source = "IEC 61260-1:2014, base-10 bands",
     .version = kBandDifferenceVersion,
     .margin = 0.1,
     .needs = kReference,
     .leastSeconds = 0.2},
    {.name = "band_difference_worst",
     .unit = "dB",
     .better = Better::kLower,
     .definition = "How far the levels lie apart in the worst third-octave band.",
     .source = "IEC 61260-1:2014, base-10 bands",
     .version = kBandDifferenceWorstVersion,
     .margin = 0.5,
     .needs = kReference,
     .leastSeconds = 0.2},
    {.name = "stoi",
     .unit = "",
     .better = Better::kHigher,
     .definition = "Intelligibility from the correlation of short envelopes in third octaves.",
     .source = "C. Taal et al., IEEE Trans. ASLP 19(7), 2011",
     .version = kStoiVersion,
     .margin = 0.005,
     .needs = kReference,
     .leastSeconds = 0.5},
    {.name = "estoi",
     .unit = "",
     .better = Better::kHigher,
     .definition = "Intelligibility from the correlation of short spectra.",
     .source = "J. Jensen, C. Taal, IEEE/ACM Trans. ASLP 24(11), 2016",
     .version = kEstoiVersion,
     .margin = 0.005,
     .needs = kReference,
     .leastSeconds = 0.5},
};

// Of one channel, in any order.
using ChannelFigures = std::map<std::string_view, Figure>;

void AddSpectral(const AlignedPair& pair, int rate, const Collector& collector,
                 ChannelFigures& figures) {
  if (collector.Wants("fw_seg_snr") || collector.Wants("lsd")) {
    const SpectralDifference spectra = CompareSpectra(pair.reference, pair.signal, rate);
    figures["fw_seg_snr"] = spectra.fwSegSnr;
    figures["lsd"] = spectra.lsd;
  }
  if (collector.Wants("cepstral_distance")) {
    figures["cepstral_distance"] = CepstralDistance(pair.reference, pair.signal, rate);
  }
  if (collector.Wants("band_difference") || collector.Wants("band_difference_worst")) {
    const BandDifference bands = CompareBands(pair.reference, pair.signal, rate);
    figures["band_difference"] = bands.mean;
    figures["band_difference_worst"] = bands.worst;
  }
  if (collector.Wants("stoi") || collector.Wants("estoi")) {
    const Intelligibility intelligibility = IntelligibilityOf(
        AtIntelligibilityRate(pair.reference, rate), AtIntelligibilityRate(pair.signal, rate));
    figures["stoi"] = intelligibility.stoi;
    figures["estoi"] = intelligibility.estoi;
  }
}

ChannelFigures FiguresOf(const AlignedPair& pair, int rate, const Collector& collector) {
  ChannelFigures figures = {{"delay", pair.delay},
                            {"delay_track", pair.delayTrack},
                            {"drift", pair.drift},
                            {"gain", pair.gain},
                            {"polarity", pair.polarity}};
  if (*pair.fault != '\0') {
    for (const Measure& measure : kMeasures) figures[measure.name] = Unknown(pair.fault);
    return figures;
  }
  if (collector.Wants("snr")) figures["snr"] = Snr(pair.reference, pair.signal);
  if (collector.Wants("si_sdr")) figures["si_sdr"] = SiSdr(pair.reference, pair.signal);
  if (collector.Wants("seg_snr")) figures["seg_snr"] = SegSnr(pair.reference, pair.signal, rate);
  AddSpectral(pair, rate, collector, figures);
  return figures;
}

void ComputeAgainstReference(const Inputs& inputs, Collector& collector) {
  std::vector<ChannelFigures> channels;
  for (size_t i = 0; i < inputs.output.channels.size(); ++i) {
    const AlignedPair pair = AlignPair(ChannelFor(inputs.reference, i), inputs.output.channels[i],
                                       inputs.output.rate, inputs.searchSeconds);
    channels.push_back(FiguresOf(pair, inputs.output.rate, collector));
  }
  for (const Measure& measure : kMeasures) {
    std::vector<Figure> figures;
    for (ChannelFigures& channel : channels) figures.push_back(channel[measure.name]);
    collector.AddWithMean(measure.name, figures);
  }
}

}  // namespace

Group ReferenceGroup() { return {kMeasures, ComputeAgainstReference}; }

}  // namespace audio_measures
