// The program around a library whose arrows are checked by linking it whole; nobody runs it.
int main() {
    return 0;
}
