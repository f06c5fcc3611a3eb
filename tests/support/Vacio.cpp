// Keeps the support library non-empty while it has no sources of its own.
namespace zuvi::pruebas {
int vacio()
{
    return 0;
}
} // namespace zuvi::pruebas
