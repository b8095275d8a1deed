#include "morph/plans.h"

namespace n0::morph {

template Source makeExtremum<Dilation<Kpr8u>>(const Job<Kpr8u>&, const Taps&);
template KprStatus extremum<Dilation<Kpr8u>>(const Call<Kpr8u>&, const Taps&);
template Source makeExtremum<Erosion<Kpr8u>>(const Job<Kpr8u>&, const Taps&);
template KprStatus extremum<Erosion<Kpr8u>>(const Call<Kpr8u>&, const Taps&);

}  // namespace n0::morph
