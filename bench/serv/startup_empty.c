/* startup_empty.c - a program that does nothing. */
int main(void) { return 0; }
