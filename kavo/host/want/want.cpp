#include "kavo/host/want/want.h"

#include <algorithm>

namespace Kavo::AAFwk {

const std::string Want::ACTION_HOME = "action.system.home";
const std::string Want::ENTITY_HOME = "entity.system.home";

Want& Want::SetBundle(const std::string& bundleName)
{
    bundleName_ = bundleName;
    return *this;
}

Want& Want::SetElementName(const std::string& bundleName, const std::string& abilityName)
{
    bundleName_ = bundleName;
    abilityName_ = abilityName;
    return *this;
}

Want& Want::SetAction(const std::string& action)
{
    action_ = action;
    return *this;
}

Want& Want::AddEntity(const std::string& entity)
{
    if (!HasEntity(entity)) {
        entities_.push_back(entity);
    }
    return *this;
}

bool Want::HasEntity(const std::string& entity) const
{
    return std::find(entities_.begin(), entities_.end(), entity) != entities_.end();
}

Want& Want::SetUri(const std::string& uri)
{
    uri_ = uri;
    return *this;
}

Want& Want::SetParams(const WantParams& params)
{
    parameters_ = params;
    return *this;
}

}  // namespace Kavo::AAFwk
