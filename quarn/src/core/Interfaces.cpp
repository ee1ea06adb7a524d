// Interfaces.cpp - the statics of the catalogue's interfaces
//
// Defined in catalogue order, so that the names are interned and the class
// objects bound in that order when the library loads. iComponent's statics
// live with ComponentObject.
#include <quarn/core/Interfaces.h>

namespace quarn {

QUARN_DEFINE_INTERFACE(iAtom);
QUARN_DEFINE_INTERFACE(iBond);
QUARN_DEFINE_INTERFACE(iCalculateProperties);
QUARN_DEFINE_INTERFACE(iChain);
QUARN_DEFINE_INTERFACE(iCheckpointBehavior);
QUARN_DEFINE_INTERFACE(iComponentDB);
QUARN_DEFINE_INTERFACE(iComponentErrorHandler);
QUARN_DEFINE_INTERFACE(iComponentInfo);
QUARN_DEFINE_INTERFACE(iComponentRunner);
QUARN_DEFINE_INTERFACE(iConnection);
QUARN_DEFINE_INTERFACE(iContext);
QUARN_DEFINE_INTERFACE(iDataRecord);
QUARN_DEFINE_INTERFACE(iDataTree);
QUARN_DEFINE_INTERFACE(iExpression);
QUARN_DEFINE_INTERFACE(iExpressionParser);
QUARN_DEFINE_INTERFACE(iGroupParameter);
QUARN_DEFINE_INTERFACE(iHaveProperties);
QUARN_DEFINE_INTERFACE(iIndexData);
QUARN_DEFINE_INTERFACE(iMacroMolecule);
QUARN_DEFINE_INTERFACE(iMolecularUtilities);
QUARN_DEFINE_INTERFACE(iMolecule);
QUARN_DEFINE_INTERFACE(iMultiDB2);
QUARN_DEFINE_INTERFACE(iNode);
QUARN_DEFINE_INTERFACE(iNodeLocation);
QUARN_DEFINE_INTERFACE(iParameter);
QUARN_DEFINE_INTERFACE(iParameterCollection);
QUARN_DEFINE_INTERFACE(iProperty);
QUARN_DEFINE_INTERFACE(iPropertyCollection);
QUARN_DEFINE_INTERFACE(iPropertyInfo);
QUARN_DEFINE_INTERFACE(iProtocolInfo);
QUARN_DEFINE_INTERFACE(iRandom);
QUARN_DEFINE_INTERFACE(iReaction);
QUARN_DEFINE_INTERFACE(iResidue);
QUARN_DEFINE_INTERFACE(iRunComponent);
QUARN_DEFINE_INTERFACE(iRunnerSoap);
QUARN_DEFINE_INTERFACE(iSGMapper);
QUARN_DEFINE_INTERFACE(iScopedDataTree);
QUARN_DEFINE_INTERFACE(iScopedPropertiesNode);
QUARN_DEFINE_INTERFACE(iXMLReaderFunctions);
QUARN_DEFINE_INTERFACE(iXPathParser);

}  // namespace quarn
