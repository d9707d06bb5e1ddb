// Want: the platform's intent record, the key of ability and extension queries: the target
// element (bundle and ability name), an action, entities, a URI and parameters. A value; not
// safe for concurrent mutation.
//
//   Want want;
//   want.SetBundle("com.example.mail");
//   want.SetAction(Want::ACTION_HOME);
#ifndef KAVO_HOST_WANT_WANT_H
#define KAVO_HOST_WANT_WANT_H

#include <string>
#include <vector>

#include "kavo/host/host_export.h"
#include "kavo/host/want/want_params.h"

namespace Kavo::AAFwk {

class KAVO_HOST_EXPORT Want {
public:
    static const std::string ACTION_HOME;
    static const std::string ENTITY_HOME;

    Want() = default;

    const std::string& GetBundle() const { return bundleName_; }
    Want& SetBundle(const std::string& bundleName);
    const std::string& GetAbilityName() const { return abilityName_; }
    // The element name: bundle plus ability.
    Want& SetElementName(const std::string& bundleName, const std::string& abilityName);
    const std::string& GetAction() const { return action_; }
    Want& SetAction(const std::string& action);
    const std::vector<std::string>& GetEntities() const { return entities_; }
    // Adds an entity once; a second add of the same name changes nothing.
    Want& AddEntity(const std::string& entity);
    bool HasEntity(const std::string& entity) const;
    const std::string& GetUriString() const { return uri_; }
    Want& SetUri(const std::string& uri);
    const WantParams& GetParams() const { return parameters_; }
    Want& SetParams(const WantParams& params);

private:
    std::string bundleName_;
    std::string abilityName_;
    std::string action_;
    std::vector<std::string> entities_;
    std::string uri_;
    WantParams parameters_;
};

}  // namespace Kavo::AAFwk

#endif  // KAVO_HOST_WANT_WANT_H
