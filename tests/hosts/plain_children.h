/*
 * Children that the plain host starts by itself, with its inheritable handles:
 *
 *     commitamong CHILDREN COMMITS   commits on a thread while it starts this many children, then
 *                                    this many times while they run; prints the failures of both
 *     outlive PID                    waits for the end of that process
 */
#ifndef TESTS_HOSTS_PLAIN_CHILDREN_H
#define TESTS_HOSTS_PLAIN_CHILDREN_H

/* Zero when the operation is none of those above. */
int childrenOperation(const char* name);

#endif
