#include "morph/plans.h"

namespace n0::morph {

template Source makeExtremum<Dilation<Kpr16u>>(const Job<Kpr16u>&, const Taps&);
template KprStatus extremum<Dilation<Kpr16u>>(const Call<Kpr16u>&, const Taps&);
template Source makeExtremum<Erosion<Kpr16u>>(const Job<Kpr16u>&, const Taps&);
template KprStatus extremum<Erosion<Kpr16u>>(const Call<Kpr16u>&, const Taps&);
template Source makeExtremum<Dilation<Kpr16s>>(const Job<Kpr16s>&, const Taps&);
template KprStatus extremum<Dilation<Kpr16s>>(const Call<Kpr16s>&, const Taps&);
template Source makeExtremum<Erosion<Kpr16s>>(const Job<Kpr16s>&, const Taps&);
template KprStatus extremum<Erosion<Kpr16s>>(const Call<Kpr16s>&, const Taps&);

}  // namespace n0::morph
