// Interfaces.h - the catalogue of the platform's interfaces
//
// The abstract interfaces through which components, the data model and the
// run environment talk to each other. Each is a class of the object model in
// its own right ("Marlix.interface.<name>"): a tag, a class object bound at
// load and a leak detector, and it answers identity queries, so an object
// made by any component library can be asked for any of them by tag
// (findAs / getAs). None can be instantiated or cloned.
//
// Here every interface carries only that glue. An interface that gains
// operations moves to a header of its own (as iComponent.h), which this file
// then includes in its place; its statics stay defined in Interfaces.cpp.
#pragma once

#include <quarn/core/Interface.h>
#include <quarn/core/iComponent.h>
#include <quarn/core/iComponentInfo.h>
#include <quarn/core/iContext.h>
#include <quarn/core/iDataRecord.h>
#include <quarn/core/iDataTree.h>
#include <quarn/core/iNode.h>
#include <quarn/core/iProperty.h>
#include <quarn/core/iPropertyCollection.h>
#include <quarn/core/iRandom.h>
#include <quarn/core/iRunnerSoap.h>

namespace quarn {

QUARN_DECLARE_INTERFACE(iAtom);
QUARN_DECLARE_INTERFACE(iBond);
QUARN_DECLARE_INTERFACE(iCalculateProperties);
QUARN_DECLARE_INTERFACE(iChain);
QUARN_DECLARE_INTERFACE(iCheckpointBehavior);
QUARN_DECLARE_INTERFACE(iComponentDB);
QUARN_DECLARE_INTERFACE(iComponentErrorHandler);
QUARN_DECLARE_INTERFACE(iComponentRunner);
QUARN_DECLARE_INTERFACE(iConnection);
QUARN_DECLARE_INTERFACE(iExpression);
QUARN_DECLARE_INTERFACE(iExpressionParser);
QUARN_DECLARE_INTERFACE(iGroupParameter);
QUARN_DECLARE_INTERFACE(iHaveProperties);
QUARN_DECLARE_INTERFACE(iIndexData);
QUARN_DECLARE_INTERFACE(iMacroMolecule);
QUARN_DECLARE_INTERFACE(iMolecularUtilities);
QUARN_DECLARE_INTERFACE(iMolecule);
QUARN_DECLARE_INTERFACE(iMultiDB2);
QUARN_DECLARE_INTERFACE(iNodeLocation);
QUARN_DECLARE_INTERFACE(iParameter);
QUARN_DECLARE_INTERFACE(iParameterCollection);
QUARN_DECLARE_INTERFACE(iPropertyInfo);
QUARN_DECLARE_INTERFACE(iProtocolInfo);
QUARN_DECLARE_INTERFACE(iReaction);
QUARN_DECLARE_INTERFACE(iResidue);
QUARN_DECLARE_INTERFACE(iRunComponent);
QUARN_DECLARE_INTERFACE(iSGMapper);
QUARN_DECLARE_INTERFACE(iScopedDataTree);
QUARN_DECLARE_INTERFACE(iScopedPropertiesNode);
QUARN_DECLARE_INTERFACE(iXMLReaderFunctions);
QUARN_DECLARE_INTERFACE(iXPathParser);

}  // namespace quarn
