#pragma once

#include "views/Element.h"
#include "views/Node.h"

namespace norvane {

// A thing with another one behind or before it. The thing itself says how large both are.
class LayeredNode final : public Node {
 public:
    enum class Place { behind, before };

    LayeredNode(Element thing, Place place, Element other);

 protected:
    Size fit(TextRuler& ruler, const Proposal& proposal) const override;

 private:
    const Node& thing() const;

    Place place_;
};

}  // namespace norvane
