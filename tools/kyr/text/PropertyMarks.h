#ifndef PROPERTYMARKS_H
#define PROPERTYMARKS_H

class TCIMPropertyDecl;

bool IsKey(const TCIMPropertyDecl& declaration);
/// Its value changes on a machine that stays the same: a time, a counter, free space.
bool IsVolatile(const TCIMPropertyDecl& declaration);
/// It speaks of the instance's other properties: where they came from, and why they have no value.
bool IsCompanion(const TCIMPropertyDecl& declaration);

#endif
