// Carries the precompiled header that every test program reuses.
int main()
{
    return 0;
}
