// main.cpp - uses the installed package through the umbrella header
#include <quarn/quarn.h>

#include <cstdio>

int main() {
  quarn::ObjPtr<quarn::IntegerValue> value(quarn::IntegerValue::newInstance());
  *value = 40000;
  quarn::MemoryOutputStream out;
  value->serialize(out);  // 03 40 9C 00 00
  quarn::MemoryInputStream in(out.getBuffer(), out.getSize());
  quarn::ObjPtr<quarn::Object> back(quarn::Class::getClassInstance(quarn::ClassTag("Marlix.value.IntegerValue")));
  back->deserialize(in);
  std::printf("%u bytes, read back %d\n", out.getSize(), back->as<quarn::Value>()->getInteger());
  return out.getSize() == 5 && back->as<quarn::Value>()->getInteger() == 40000 ? 0 : 1;
}
