// Stands for Node's own types, of which the binding uses this.
declare module 'events' {
    class EventEmitter {}
}
