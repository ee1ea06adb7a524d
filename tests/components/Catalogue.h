// Catalogue.h - the interface catalogue as a table, for the tests
//
// Every interface of the platform with its class name, tag and class object;
// shared by the catalogue test and the module checker library.
#pragma once

#include <quarn/core/Interfaces.h>

namespace quarn::test {

struct CatalogueRow {
  char const *name;
  ClassTag const *tag;
  Class const *classObject;
};

#define QUARN_TEST_ROW(iX) \
  { "Marlix.interface." #iX, &iX::Tag, &iX::m_class }

inline constexpr CatalogueRow kCatalogue[] = {
    QUARN_TEST_ROW(iAtom),
    QUARN_TEST_ROW(iBond),
    QUARN_TEST_ROW(iCalculateProperties),
    QUARN_TEST_ROW(iChain),
    QUARN_TEST_ROW(iCheckpointBehavior),
    QUARN_TEST_ROW(iComponent),
    QUARN_TEST_ROW(iComponentDB),
    QUARN_TEST_ROW(iComponentErrorHandler),
    QUARN_TEST_ROW(iComponentInfo),
    QUARN_TEST_ROW(iComponentRunner),
    QUARN_TEST_ROW(iConnection),
    QUARN_TEST_ROW(iContext),
    QUARN_TEST_ROW(iDataRecord),
    QUARN_TEST_ROW(iDataTree),
    QUARN_TEST_ROW(iExpression),
    QUARN_TEST_ROW(iExpressionParser),
    QUARN_TEST_ROW(iGroupParameter),
    QUARN_TEST_ROW(iHaveProperties),
    QUARN_TEST_ROW(iIndexData),
    QUARN_TEST_ROW(iMacroMolecule),
    QUARN_TEST_ROW(iMolecularUtilities),
    QUARN_TEST_ROW(iMolecule),
    QUARN_TEST_ROW(iMultiDB2),
    QUARN_TEST_ROW(iNode),
    QUARN_TEST_ROW(iNodeLocation),
    QUARN_TEST_ROW(iParameter),
    QUARN_TEST_ROW(iParameterCollection),
    QUARN_TEST_ROW(iProperty),
    QUARN_TEST_ROW(iPropertyCollection),
    QUARN_TEST_ROW(iPropertyInfo),
    QUARN_TEST_ROW(iProtocolInfo),
    QUARN_TEST_ROW(iRandom),
    QUARN_TEST_ROW(iReaction),
    QUARN_TEST_ROW(iResidue),
    QUARN_TEST_ROW(iRunComponent),
    QUARN_TEST_ROW(iRunnerSoap),
    QUARN_TEST_ROW(iSGMapper),
    QUARN_TEST_ROW(iScopedDataTree),
    QUARN_TEST_ROW(iScopedPropertiesNode),
    QUARN_TEST_ROW(iXMLReaderFunctions),
    QUARN_TEST_ROW(iXPathParser),
};

#undef QUARN_TEST_ROW

}  // namespace quarn::test
