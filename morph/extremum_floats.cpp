#include "morph/plans.h"

namespace n0::morph {

template Source makeExtremum<Dilation<Kpr32f>>(const Job<Kpr32f>&, const Taps&);
template KprStatus extremum<Dilation<Kpr32f>>(const Call<Kpr32f>&, const Taps&);
template Source makeExtremum<Erosion<Kpr32f>>(const Job<Kpr32f>&, const Taps&);
template KprStatus extremum<Erosion<Kpr32f>>(const Call<Kpr32f>&, const Taps&);

}  // namespace n0::morph
