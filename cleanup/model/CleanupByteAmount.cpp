#include "cleanup/model/CleanupByteAmount.h"

#include "cleanup/model/HashOf.h"

std::size_t std::hash<vantry::CleanupByteAmount>::operator()(const vantry::CleanupByteAmount& amount) const {
    return vantry::hashOf(amount.knownBytes(), amount.isExact());
}
