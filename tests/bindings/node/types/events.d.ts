// The one of Node's types that the binding uses.
declare module 'events' {
    class EventEmitter {}
}
