#include "tools/simulator/simNmeaReceiver.h"
#include "tools/simulator/simReceiver.h"
#include "tools/simulator/simTsip.h"
#include "tools/simulator/simUblox.h"

std::unique_ptr<simReceiver> simMake(const simOptions& options)
{
    if (const simUbxModel* const ublox = simUbxModelOf(options.Model))
        return std::make_unique<simUblox>(*ublox, options);
    if (const simTsipModel* const trimble = simTsipModelOf(options.Model))
        return std::make_unique<simTsip>(*trimble, options);
    if (options.Model == simModel::NVS)
        return std::make_unique<simNvsReceiver>(options);
    return std::make_unique<simNmeaReceiver>(options);
}
