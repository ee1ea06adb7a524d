// quarn.h - the umbrella header: everything public in quarnCore and quarn
//
// Include this one header and link quarn::quarn (which brings quarn::quarnCore).
// Finer headers beside it may be included on their own.
#pragma once

// quarnCore: the runtime
#include <quarnCore/AllocBase.h>
#include <quarnCore/Array.h>
#include <quarnCore/Base64.h>
#include <quarnCore/BaseString.h>
#include <quarnCore/CriticalSection.h>
#include <quarnCore/Exception.h>
#include <quarnCore/HashMap.h>
#include <quarnCore/Interlocked.h>
#include <quarnCore/LeakDetector.h>
#include <quarnCore/Stack.h>
#include <quarnCore/TextUtil.h>
#include <quarnCore/Unicode.h>

// core: the class system
#include <quarn/core/Annotate.h>
#include <quarn/core/CClassRegistryFile.h>
#include <quarn/core/CZedClassInfo.h>
#include <quarn/core/CZedLibraryUtils.h>
#include <quarn/core/Class.h>
#include <quarn/core/ClassTag.h>
#include <quarn/core/ComponentImpl.h>
#include <quarn/core/ComponentLibrary.h>
#include <quarn/core/ComponentObject.h>
#include <quarn/core/CountedObject.h>
#include <quarn/core/DynamicCreation.h>
#include <quarn/core/DynamicLibrary.h>
#include <quarn/core/DynamicObject.h>
#include <quarn/core/Interface.h>
#include <quarn/core/Interfaces.h>
#include <quarn/core/Object.h>
#include <quarn/core/ObjectImpl.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/core/PooledObject.h>
#include <quarn/core/Ptr.h>
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

// value: typed values and their byte streams
#include <quarn/value/ArrayValue.h>
#include <quarn/value/ArrayValueImpl.h>
#include <quarn/value/BitFingerprintArrayValue.h>
#include <quarn/value/BitFingerprintValue.h>
#include <quarn/value/BitsetArrayValue.h>
#include <quarn/value/BitsetArrayValueImpl.h>
#include <quarn/value/BitsetValue.h>
#include <quarn/value/BitsetValue2D.h>
#include <quarn/value/BitsetValue3D.h>
#include <quarn/value/BooleanArrayValue.h>
#include <quarn/value/BooleanValue.h>
#include <quarn/value/ByteArrayValue.h>
#include <quarn/value/ByteStream.h>
#include <quarn/value/ConverterRegistry.h>
#include <quarn/value/Crc32c.h>

#include <quarn/value/DateTimeValue.h>
#include <quarn/value/DefaultComparator.h>
#include <quarn/value/DoubleArrayValue.h>
#include <quarn/value/DoubleComparator.h>
#include <quarn/value/DoubleFingerprintValue.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/FileStream.h>
#include <quarn/value/FlexArrayValue.h>
#include <quarn/value/FlexValue.h>
#include <quarn/value/IntegerArrayValue.h>
#include <quarn/value/IntegerFingerprintValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/MemoryStream.h>
#include <quarn/value/MissingValue.h>
#include <quarn/value/NullArrayValue.h>
#include <quarn/value/NullValue.h>
#include <quarn/value/RecordFile.h>
#include <quarn/value/RecordFileReader.h>
#include <quarn/value/RecordFileWriter.h>

#include <quarn/value/StreamLoadingPolicy.h>
#include <quarn/value/StringArrayValue.h>
#include <quarn/value/StringComparator.h>
#include <quarn/value/StringFingerprintValue.h>
#include <quarn/value/StringValue.h>
#include <quarn/value/TypedValueTypeConverter.h>
#include <quarn/value/Value.h>
#include <quarn/value/ValueArrayValue.h>
#include <quarn/value/ValueGlue.h>
#include <quarn/value/ValueTypeConverter.h>

// data: records, trees, their properties and the property type names
#include <quarn/data/DataNode.h>
#include <quarn/data/DataRecord.h>
#include <quarn/data/DataTree.h>
#include <quarn/data/NodeReferenceSet.h>
#include <quarn/data/Property.h>
#include <quarn/data/PropertyCollection.h>
#include <quarn/data/PropertyHelpers.h>
#include <quarn/data/PropertyListImpl.h>
#include <quarn/data/PropertyReferenceSet.h>
#include <quarn/data/PropertyTable.h>
#include <quarn/data/ReferenceSetImpl.h>
#include <quarn/data/TreeHelpers.h>
#include <quarn/data/VariableType.h>

// eval: statistical functions, the context in which expressions are
// evaluated, and the run context
#include <quarn/eval/ComponentInfo.h>
#include <quarn/eval/ContextParamsPushPop.h>
#include <quarn/eval/ExpressionContext.h>
#include <quarn/eval/Math.h>
#include <quarn/eval/RandomSource.h>
#include <quarn/eval/RunContext.h>

// util: text encodings, the run environment and job states
#include <quarn/util/JobStatus.h>
#include <quarn/util/NameEncoding.h>
#include <quarn/util/RunEnvironment.h>
#include <quarn/util/TextEncoding.h>
#include <quarn/util/TimeStamp.h>
