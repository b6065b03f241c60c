// Nothing of its own: what it is compiled with carries the headers that all test programs begin with.
