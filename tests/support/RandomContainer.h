#ifndef RANDOMCONTAINER_H
#define RANDOMCONTAINER_H

class TContainer;

/// Fills an empty container with a schema and instances that a collection could hold, hostile texts and extreme numbers
/// among them; always the same for a seed.
void FillAtRandom(TContainer& container, unsigned int seed);

#endif
